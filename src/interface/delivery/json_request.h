// The host's JSON request, and the document that each device is delivered as:
//
//     {"DiscoverOID": "<dotted OID>", "GET": {"<dotted OID>": "<replaced by the answer>", ...}}
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace vndiscover {

constexpr size_t kJsonRequestSize = 2048;  // bytes, with the terminator
constexpr size_t kOidTextSize = 260;       // bytes of an OID text, with the terminator

// The request's "DiscoverOID" as UTF-8, "" when there is none. Logs it.
std::string ReadDiscoveryOid(const char* jsonRequest);

// Asks the device for one OID: true, with the answer in the ANSI code page, when it gave one.
using FetchValue = std::function<bool(const char* oid, std::string& value)>;

/**
 * Fills in the request for one device: each member of "GET" whose fetch succeeds gets the answer,
 * the others keep what the host put there.
 * @param document  Receives the printed document as UTF-8; left alone when there is none to print.
 * @return False: the request is no JSON document.
 */
bool FillInDocument(const char* jsonRequest, const FetchValue& fetch, std::string& document);

// Length of the longest prefix of at most `limit` bytes that does not end within a UTF-8 character.
size_t Utf8PrefixLength(const std::string& text, size_t limit);

}  // namespace vndiscover
