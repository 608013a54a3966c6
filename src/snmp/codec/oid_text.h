// OBJECT IDENTIFIERs as dotted text.
#pragma once

#include <cstdint>

namespace vndiscover {

constexpr int32_t kMaxOidContent = 255;   // the limit of a one-byte length
constexpr int32_t kMaxNameContent = 124;  // the limit of a binding

// An encoded OID as tag, length and content, as in a binding.
struct OidValue {
    uint8_t tag;
    uint8_t length;
    uint8_t content[kMaxOidContent];
};

/**
 * Encodes dotted text such as ".1.3.6.1.2.1.1.1.0". Null reads as "".
 * @return The content length; 0 for fewer than two arcs. If it exceeds kMaxOidContent, `out` is
 * left without content. Kept: arcs of 128 and above take two bytes, so arcs of 16,384 and above
 * lose their high bits.
 */
int32_t ParseOidText(OidValue& out, const char* text);

}  // namespace vndiscover
