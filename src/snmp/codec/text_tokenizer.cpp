#include "snmp/codec/text_tokenizer.h"

#include <cstring>

namespace vndiscover {
namespace {

const char kBlanks[] = " \t\n\r";
const char kTrimmed[] = " \t\n\r\"";

bool IsOneOf(char c, const char* set) { return c != '\0' && std::strchr(set, c) != nullptr; }

bool IsBlank(const std::string& piece) {
    return piece.find_first_not_of(kBlanks) == std::string::npos;
}

std::string Trim(const std::string& piece) {
    const size_t first = piece.find_first_not_of(kTrimmed);
    if (first == std::string::npos) return {};
    return piece.substr(first, piece.find_last_not_of(kTrimmed) - first + 1);
}

// Reads one piece and leaves `text` at the delimiter or the end after it.
std::string ReadPiece(const char*& text, const char* delimiters) {
    std::string piece;
    char quote = '\0';
    for (; *text && (quote || !IsOneOf(*text, delimiters)); ++text) {
        if (quote ? *text == quote : (*text == '"' || *text == '\'')) {
            quote = quote ? '\0' : *text;
        } else if (piece.size() < kMaxPieceChars) {
            piece += *text;
        }
    }
    return piece;
}

}  // namespace

std::vector<std::string> SplitText(const char* text, const char* delimiters) {
    std::vector<std::string> pieces;
    bool delimiterBefore = false;
    for (;;) {
        std::string piece = ReadPiece(text, delimiters);
        const bool delimiterAfter = *text != '\0';
        if (!IsBlank(piece) || (delimiterBefore && delimiterAfter)) {
            pieces.push_back(Trim(piece));
        }
        if (!delimiterAfter || pieces.size() == kMaxPieces) return pieces;
        delimiterBefore = true;
        ++text;
    }
}

}  // namespace vndiscover
