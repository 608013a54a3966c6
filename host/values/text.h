#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vndiscover::host {

// In lower case, ASCII letters only.
std::string Lower(std::string_view text);

// The texts that are not empty, with `separator` between them.
std::string Joined(const std::vector<std::string>& texts, std::string_view separator = ", ");

// The text of each element, those that are not empty with `separator` between them.
template <class Range, class TextOf>
std::string JoinedAs(const Range& range, TextOf textOf, std::string_view separator = ", ") {
    std::vector<std::string> texts;
    texts.reserve(std::size(range));
    for (const auto& element : range) texts.push_back(textOf(element));
    return Joined(texts, separator);
}

// The parts of a text between any of `separators`; none is empty.
std::vector<std::string> SplitText(std::string_view text, std::string_view separators);

// Two upper-case digits per byte, with `separator` between bytes.
std::string HexText(std::string_view bytes, std::string_view separator);

// Pairs of digits to bytes; any of `separators` may stand between pairs. Empty for other text.
std::optional<std::string> ParseHex(std::string_view text, std::string_view separators = "");

size_t CharacterCount(std::string_view utf8);

// `text` padded with spaces to `width` characters; never cut.
std::string Padded(std::string_view text, size_t width);

struct Character {
    uint32_t code;
    size_t bytes;  // read, at least 1
    bool isUtf8;
};
// `text` is not empty. The first byte of a sequence that is not UTF-8 is read as Latin-1.
Character FirstCharacter(std::string_view text);

void AppendUtf8(std::string& out, uint32_t code);

}  // namespace vndiscover::host
