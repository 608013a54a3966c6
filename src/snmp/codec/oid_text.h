// OBJECT IDENTIFIERs as dotted text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

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
OidValue OidOf(const char* text);

constexpr size_t kMaxPieces = 300;
constexpr size_t kMaxPieceChars = 259;

/**
 * Splits text at each of the delimiter characters, into at most kMaxPieces pieces of at most
 * kMaxPieceChars characters. Text in double or single quotes is kept together, without the quotes.
 * Two delimiters in a row give an empty piece; a piece of blanks alone is dropped unless there are
 * delimiters on both sides. Pieces are trimmed of blanks, line ends and double quotes.
 */
std::vector<std::string> SplitText(const char* text, const char* delimiters);

}  // namespace vndiscover
