#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vndiscover {

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
