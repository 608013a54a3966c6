// The host's JSON request, and the document that is delivered for each device:
//
//     {"DiscoverOID": "<dotted OID>", "GET": {"<dotted OID>": "<replaced by the answer>", ...}}
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace vndiscover {

constexpr size_t kJsonRequestSize = 2048;  // bytes, including the terminator
constexpr size_t kOidTextSize = 260;       // bytes of an OID text, including the terminator

// The request's "DiscoverOID" as UTF-8; "" if there is none. Logs it.
std::string ReadDiscoveryOid(const char* jsonRequest);

// Requests one OID from the device. True: it answered; value is in the ANSI code page.
using FetchValue = std::function<bool(const char* oid, std::string& value)>;

/**
 * Fills in the request for one device: the answer replaces each member of "GET" whose fetch
 * succeeds; the others keep the host's string.
 * @param document  Receives the printed document as UTF-8; left alone if printing fails.
 * @return False if the request is not a JSON document.
 */
bool FillInDocument(const char* jsonRequest, const FetchValue& fetch, std::string& document);

// Length of the longest prefix of at most `limit` bytes that does not end within a UTF-8 character.
size_t Utf8PrefixLength(const std::string& text, size_t limit);

}  // namespace vndiscover
