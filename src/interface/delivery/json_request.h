// The host's JSON request, and the document that is delivered for each device:
//
//     {"DiscoverOID": "<dotted OID>", "GET": {"<dotted OID>": "<replaced by the answer>", ...}}
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "interface/delivery/json_doc.h"

namespace vndiscover {

constexpr size_t kJsonRequestSize = 2048;  // bytes, including the terminator
constexpr size_t kOidTextSize = 260;       // bytes of an OID text, including the terminator

// The request's "DiscoverOID" as UTF-8; "" if there is none. Logs it.
std::string ReadDiscoveryOid(const char* jsonRequest);

// The request as a form that is filled in for one device:
//
//     while (const char* oid = form.NextOid()) form.Put(answer);
//
// A member without an answer keeps the host's string.
class JsonForm {
  public:
    explicit JsonForm(const char* jsonRequest);

    bool IsJson() const { return document_.Root() != nullptr; }

    // The next OID under "GET"; null after the last. One of kOidTextSize bytes or more is left out:
    // cut, it would name another variable.
    const char* NextOid();

    // The answer for that OID, in the ANSI code page.
    void Put(const char* answer);

    // The document as UTF-8; "" if printing fails.
    std::string Print() const;

  private:
    static constexpr size_t kMemberChars = 1024;  // 2,048 bytes of UTF-16

    JsonDoc document_;
    cJSON* get_ = nullptr;
    int32_t next_ = 0;
    wchar_t key_[kMemberChars];  // of the member whose OID was given last
    char szKey_[kOidTextSize];
};

// Length of the longest prefix of at most `limit` bytes that does not end within a UTF-8 character.
size_t Utf8PrefixLength(const std::string& text, size_t limit);

}  // namespace vndiscover
