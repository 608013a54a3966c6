#include "values/text.h"

#include <algorithm>
#include <charconv>

namespace vndiscover::host {
std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter | 0x20);
    }
    return lower;
}

std::string Joined(const std::vector<std::string>& texts, std::string_view separator) {
    std::string line;
    for (const std::string& text : texts) {
        if (!line.empty() && !text.empty()) line += separator;
        line += text;
    }
    return line;
}

std::vector<std::string> SplitText(std::string_view text, std::string_view separators) {
    std::vector<std::string> parts;
    while (true) {
        const size_t start = text.find_first_not_of(separators);
        if (start == std::string_view::npos) return parts;
        text.remove_prefix(start);
        const size_t end = std::min(text.find_first_of(separators), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

std::string HexText(std::string_view bytes, std::string_view separator) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out;
    for (const char byte : bytes) {
        if (!out.empty()) out += separator;
        out += kDigits[static_cast<uint8_t>(byte) >> 4];
        out += kDigits[byte & 0x0F];
    }
    return out;
}

std::optional<std::string> ParseHex(std::string_view text, std::string_view separators) {
    std::string bytes;
    for (size_t i = 0; i < text.size();) {
        if (separators.find(text[i]) != std::string_view::npos) {
            ++i;
            continue;
        }
        uint8_t byte = 0;
        const char* const pair = text.data() + i;
        if (i + 2 > text.size() || std::from_chars(pair, pair + 2, byte, 16).ptr != pair + 2)
            return std::nullopt;
        bytes += static_cast<char>(byte);
        i += 2;
    }
    return bytes;
}

size_t CharacterCount(std::string_view utf8) {
    return static_cast<size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string Padded(std::string_view text, size_t width) {
    const size_t characters = CharacterCount(text);
    return std::string(text) + std::string(std::max(width, characters) - characters, ' ');
}

Character FirstCharacter(std::string_view text) {
    const auto byteAt = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
    const uint8_t first = byteAt(0);
    const Character latin1{first, 1, false};
    if (first < 0x80) return {first, 1, true};
    const size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < size) return latin1;
    uint32_t code = first & (0x7Fu >> size);
    for (size_t i = 1; i < size; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80) return latin1;
        code = code << 6 | (byteAt(i) & 0x3Fu);
    }
    const bool isOverlong = (size == 3 && code < 0x800) || (size == 4 && code < 0x10000);
    if (isOverlong || (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF) return latin1;
    return {code, size, true};
}

void AppendUtf8(std::string& out, uint32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
        return;
    }
    const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr uint8_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(kLead[more] | code >> (6 * more));
    for (int i = more - 1; i >= 0; --i) out += static_cast<char>(0x80 | (code >> (6 * i) & 0x3F));
}

}  // namespace vndiscover::host
