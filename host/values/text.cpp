#include "values/text.h"

#include <algorithm>
#include <charconv>

#include "values/ranges.h"

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
    size_t start = text.find_first_not_of(separators);
    while (start != std::string_view::npos) {
        const size_t end = std::min(text.find_first_of(separators, start), text.size());
        parts.emplace_back(text.substr(start, end - start));
        start = text.find_first_not_of(separators, end);
    }
    return parts;
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

namespace {

constexpr uint32_t kReplacement = 0xFFFD;

bool IsBreak(uint32_t code) { return code == '\t' || code == '\n' || code == '\r'; }

// C0, DEL, C1, and the marks that reverse, hide or break a line on a terminal.
bool IsControl(uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x061C ||
           (code >= 0x200B && code <= 0x200F) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF;
}

std::string_view WithoutZeroEnd(std::string_view bytes) {
    return bytes.substr(0, bytes.find_last_not_of('\0') + 1);
}

bool StartsFormula(std::string_view text) {
    // The last four are the full-width forms of the first four.
    constexpr std::string_view kStarts[] = {
        "=",           "+", "-", "@", "\t", "\r", "\xEF\xBC\x9D", "\xEF\xBC\x8B", "\xEF\xBC\x8D",
        "\xEF\xBC\xA0"};
    return AnyOf(kStarts, [&](auto start) { return text.substr(0, start.size()) == start; });
}

}  // namespace

std::string PlainText(std::string_view bytes, Breaks breaks) {
    std::string out;
    bool needsSpace = false;
    for (size_t i = 0; i < bytes.size();) {
        const Character next = FirstCharacter(bytes.substr(i));
        i += next.bytes;
        const bool isCrLf = next.code == '\r' && i < bytes.size() && bytes[i] == '\n';
        if (breaks == Breaks::kKeep && isCrLf) continue;
        if ((breaks == Breaks::kKeep && (next.code == '\n' || next.code == '\t')) ||
            (breaks == Breaks::kKeepAll && next.code < 0x20)) {
            out += static_cast<char>(next.code);
        } else if (breaks == Breaks::kFold && IsBreak(next.code)) {
            needsSpace = true;
        } else {
            if (needsSpace && !out.empty()) out += ' ';
            needsSpace = false;
            AppendUtf8(out, IsControl(next.code) ? kReplacement : next.code);
        }
    }
    return out;
}

std::string DeviceText(std::string_view bytes) {
    constexpr std::string_view kBlanks(" \t\r\n\0", 5);
    const size_t start = std::min(bytes.find_first_not_of(kBlanks), bytes.size());
    return PlainText(bytes.substr(start, bytes.find_last_not_of(kBlanks) + 1 - start));
}

bool IsPrintable(std::string_view bytes) {
    const bool isEmpty = bytes.empty();
    bytes = WithoutZeroEnd(bytes);
    if (bytes.empty() && !isEmpty) return false;  // zero bytes alone would not be visible
    bool isUtf8 = true;
    size_t ascii = 0;
    for (size_t i = 0; i < bytes.size();) {
        const Character next = FirstCharacter(bytes.substr(i));
        if (IsControl(next.code) && !IsBreak(next.code)) return false;
        isUtf8 = isUtf8 && next.isUtf8;
        ascii += next.code < 0x80 ? 1 : 0;
        i += next.bytes;
    }
    // All bytes of a hardware address may be Latin-1 letters; text has more ASCII than that.
    return isUtf8 || ascii * 2 > bytes.size();
}

std::string ShownValue(std::string_view bytes) {
    if (IsPrintable(bytes)) return PlainText(WithoutZeroEnd(bytes));
    return "0x" + HexText(bytes, "");
}

std::string SpacedWords(std::string_view word) {
    std::string out;
    for (size_t i = 0; i < word.size(); ++i) {
        const bool isUpper = word[i] >= 'A' && word[i] <= 'Z';
        const bool startsWord = isUpper && i > 0 && word[i - 1] >= 'a' && word[i - 1] <= 'z';
        if (startsWord) out += ' ';
        const bool isAbbreviation = i + 1 < word.size() && word[i + 1] >= 'A' && word[i + 1] <= 'Z';
        out += startsWord && !isAbbreviation ? static_cast<char>(word[i] | 0x20) : word[i];
    }
    return out;
}

std::string CsvCell(std::string_view text) {
    std::string cell = "\"";
    bool isStart = true;
    for (size_t at = 0; at < text.size(); ++at) {
        if (isStart && StartsFormula(text.substr(at))) cell += '\'';
        // Where the list separator is a semicolon, spreadsheets begin a new cell after it.
        isStart = text[at] == ';';
        if (text[at] == '"') cell += '"';
        cell += text[at];
    }
    return cell + "\"";
}

std::string HarmlessCell(std::string_view text) {
    return (StartsFormula(text) ? "'" : "") + std::string(text);
}

}  // namespace vndiscover::host
