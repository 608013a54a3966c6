#include "snmpv3/crypto/protocol_codes.h"

#include <cstddef>

namespace vndiscover {
namespace {

struct AuthProtocol {
    const wchar_t* label;
    uint32_t macLength;
};

// By code, from 1. RFC 3414 and RFC 7860 truncate the HMACs to these lengths.
constexpr AuthProtocol kAuthProtocols[] = {
    {L"MD5", 12},        {L"SHA1", 12},       {L"SHA-2(224)", 16},
    {L"SHA-2(256)", 24}, {L"SHA-2(384)", 32}, {L"SHA-2(512)", 48},
};
constexpr const wchar_t* kPrivLabels[] = {L"DES", L"AES"};

// Labels are ASCII and must not depend on the locale.
wchar_t ToUpperAscii(wchar_t c) {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

bool SameLabel(const wchar_t* a, const wchar_t* b) {
    while (*a && ToUpperAscii(*a) == ToUpperAscii(*b)) ++a, ++b;
    return *a == *b;
}

}  // namespace

uint32_t AuthCodeOf(const wchar_t* label) {
    uint32_t code = kAuthMd5;
    for (const AuthProtocol& protocol : kAuthProtocols) {
        if (label && SameLabel(label, protocol.label)) return code;
        ++code;
    }
    return kAuthNone;
}

uint32_t PrivCodeOf(const wchar_t* label) {
    uint32_t code = kPrivDes;
    for (const wchar_t* known : kPrivLabels) {
        if (label && SameLabel(label, known)) return code;
        ++code;
    }
    return kPrivNone;
}

uint32_t MacLength(uint32_t authCode) {
    const bool known = authCode >= kAuthMd5 && authCode <= kAuthSha512;
    return known ? kAuthProtocols[authCode - kAuthMd5].macLength : 0;
}

}  // namespace vndiscover
