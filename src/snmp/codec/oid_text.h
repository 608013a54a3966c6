// OBJECT IDENTIFIERs as dotted text.
#pragma once

#include <cstdint>

namespace vndiscover {

constexpr int32_t kMaxOidContent = 255;   // what the one length byte can say
constexpr int32_t kMaxNameContent = 124;  // what a binding has room for

// An encoded OID as tag, length, content: the shape in which bindings take it.
struct OidValue {
    uint8_t tag;
    uint8_t length;
    uint8_t content[kMaxOidContent];
};

/**
 * Encodes dotted text such as ".1.3.6.1.2.1.1.1.0". Null reads as "".
 * @return The content length, 0 for fewer than two arcs. One of more than kMaxOidContent bytes,
 * which no binding could hold, leaves out without content. Kept: an arc from 128 on is written in
 * two bytes, so that arcs from 16,384 on lose their high bits.
 */
int32_t ParseOidText(OidValue& out, const char* text);

}  // namespace vndiscover
