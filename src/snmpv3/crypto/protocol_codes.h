// Codes and labels of the SNMPv3 protocols.
#pragma once

#include <cstdint>

namespace vndiscover {

constexpr uint32_t kAuthNone = 0;
constexpr uint32_t kAuthMd5 = 1;
constexpr uint32_t kAuthSha1 = 2;
constexpr uint32_t kAuthSha224 = 3;
constexpr uint32_t kAuthSha256 = 4;
constexpr uint32_t kAuthSha384 = 5;
constexpr uint32_t kAuthSha512 = 6;

constexpr uint32_t kPrivNone = 0;
constexpr uint32_t kPrivDes = 1;
constexpr uint32_t kPrivAes = 2;

// "MD5", "SHA1", "SHA-2(224)", "SHA-2(256)", "SHA-2(384)", "SHA-2(512)" in any letter case; 0 for
// any other label and for null.
uint32_t AuthCodeOf(const wchar_t* label);

// "DES", "AES" in any letter case; 0 for any other label and for null.
uint32_t PrivCodeOf(const wchar_t* label);

// Bytes of the truncated HMAC; 0 for a code that has none.
uint32_t MacLength(uint32_t authCode);

}  // namespace vndiscover
