#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vndiscover::host {

// With ASCII letters in lower case.
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
// Of a text that is not empty. The first byte of a sequence that is not UTF-8 is read as Latin-1.
Character FirstCharacter(std::string_view text);

void AppendUtf8(std::string& out, uint32_t code);

// Makes text from the network safe for terminals, UTF-8 documents and spreadsheets. Devices send
// old code pages, binary values, or escape sequences meant to change what the user sees.

enum class Breaks {
    kFold,     // each run of tabs and line breaks becomes one space, and none at the ends
    kKeep,     // tabs and line breaks are kept; CR LF becomes LF
    kKeepAll,  // all characters below U+0020 are kept, for JSON, which escapes them
};

// Valid UTF-8 without control characters. Bytes that are not UTF-8 are read as Latin-1. Other
// control characters, and marks that reverse or hide text, become U+FFFD.
std::string PlainText(std::string_view bytes, Breaks breaks = Breaks::kFold);

// PlainText without spaces and zero bytes at its ends. The character set that a device names is not
// used: many send UTF-8 whatever they name, or cut it within a character.
std::string DeviceText(std::string_view bytes);

// Whether the bytes are text rather than a binary value: no control characters except tabs, line
// breaks and trailing zero bytes, and UTF-8 or at least mostly ASCII.
bool IsPrintable(std::string_view bytes);

// One line for a person: PlainText if the value is printable, otherwise "0x...".
std::string ShownValue(std::string_view bytes);

// A cell of a CSV document (RFC 4180), with an apostrophe before what may run as a formula.
std::string CsvCell(std::string_view text);

// A cell of copied rows, where tabs separate cells: only the apostrophe.
std::string HarmlessCell(std::string_view text);

// "tenthsOfGrams" as "tenths of grams", "doorOpen" as "door open".
std::string SpacedWords(std::string_view word);

}  // namespace vndiscover::host
