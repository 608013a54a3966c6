// Text from the network, made fit for a terminal and for UTF-8 documents. Devices send what they
// like: text in an old code page, binary values, or escape sequences meant to rewrite what the user
// sees.
#ifndef VNDISCOVER_HOST_VALUES_PLAIN_TEXT_H
#define VNDISCOVER_HOST_VALUES_PLAIN_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>

namespace vndiscover::host {

enum class Breaks {
    kFold,  // each run of tabs and line breaks becomes one space, none at the ends: for one line of
            // a table
    kKeep,  // tabs and line breaks stay, CR LF becomes LF
};

// Valid UTF-8 without control characters. What is no UTF-8 is read as Latin-1; what is left of
// control characters and of marks that reverse or hide text becomes U+FFFD.
std::string PlainText(std::string_view bytes, Breaks breaks = Breaks::kFold);

// One line of text in the character set that a device names for its texts by its MIBenum number: 4
// is Latin-1; 3 (ASCII), 106 (UTF-8) and any other are UTF-8 where the text as a whole is that,
// else Latin-1. Without spaces and zero bytes at the ends.
std::string DeviceText(std::string_view bytes, int64_t characterSet);

// True when the bytes are text rather than a binary value: no control characters but tabs, line
// breaks and zero bytes after a text, and UTF-8 or at least mostly ASCII.
bool IsPrintable(std::string_view bytes);

// Two upper-case digits a byte, `separator` between them.
std::string HexText(std::string_view bytes, std::string_view separator);

// One line for a person: PlainText of a printable value, "0x..." of any other.
std::string ShownValue(std::string_view bytes);

// "tenthsOfGrams" as "tenths of grams", "doorOpen" as "door open".
std::string SpacedWords(std::string_view word);

// `text` padded with spaces to `width` characters (not bytes); a longer one stays whole.
std::string Padded(std::string_view text, size_t width);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_VALUES_PLAIN_TEXT_H
