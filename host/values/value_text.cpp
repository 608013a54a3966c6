#include "values/value_text.h"

#include <charconv>
#include <cstdio>
#include <utility>

#include "values/ip_address.h"
#include "values/oid_text.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

// Announces a long-form length, but is read as the length itself.
constexpr size_t kLongFormSize = 0x81;

constexpr std::pair<uint32_t, const char*> kTypes[] = {
    {kInteger, "INTEGER"},
    {kOctetString, "OCTET STRING"},
    {kNull, "NULL"},
    {kObjectIdentifier, "OBJECT IDENTIFIER"},
    {kIpAddress, "IpAddress"},
    {kCounter32, "Counter32"},
    {kGauge32, "Gauge32"},
    {kTimeTicks, "TimeTicks"},
    {kOpaque, "Opaque"},
    {kCounter64, "Counter64"},
    {kNoSuchObject, "noSuchObject"},
    {kNoSuchInstance, "noSuchInstance"},
    {kEndOfMibView, "endOfMibView"},
};

uint64_t BigEndian(std::string_view bytes) {
    uint64_t number = 0;
    for (const char byte : bytes) number = number << 8 | static_cast<uint8_t>(byte);
    return number;
}

// The shortest two's complement form: bytes are added until they hold the number with its sign.
std::string IntegerBytes(int64_t number) {
    std::string bytes(1, static_cast<char>(number & 0xFF));
    for (; number < -128 || number > 127; bytes.insert(0, 1, static_cast<char>(number & 0xFF)))
        number >>= 8;
    return bytes;
}

std::optional<int64_t> ParseNumber(std::string_view text, int64_t lowest, int64_t highest) {
    int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    const bool isNumber = error == std::errc() && rest == end;
    if (!isNumber || number < lowest || number > highest) return std::nullopt;
    return number;
}

std::optional<std::string> ParseContent(uint32_t type, bool isHex, std::string_view text,
                                        std::string& problem) {
    std::optional<std::string> bytes;
    if (type == kInteger) {
        problem = "an integer is from -2147483648 to 2147483647";
        if (const auto number = ParseNumber(text, INT32_MIN, INT32_MAX))
            bytes = IntegerBytes(*number);
    } else if (type == kCounter32 || type == kGauge32 || type == kTimeTicks) {
        problem = "a counter, gauge or time is from 0 to 4294967295";
        if (const auto number = ParseNumber(text, 0, UINT32_MAX)) bytes = IntegerBytes(*number);
    } else if (type == kObjectIdentifier) {
        problem = "an OID is numeric, for example .1.3.6.1.2.1.1.1.0";
        if (const auto oid = ParseOid(text); oid && oid->size() >= 2) bytes = EncodeOid(*oid);
    } else if (type == kIpAddress) {
        problem = "an IP address has four parts, for example 192.168.1.20";
        if (const auto address = ParseIpAddress(text); address && address->IsIPv4())
            bytes = address->bytes;
    } else if (type == kNull) {
        problem = "null takes no value";
        if (text.empty()) bytes.emplace();
    } else if (isHex) {
        problem = "hex takes pairs of digits, for example \"00 1B 44\" or 001B44";
        const bool isPrefixed = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
        bytes = ParseHex(text.substr(isPrefixed ? 2 : 0), " :-");
    } else {
        bytes.emplace(text);
    }
    return bytes;
}

}  // namespace

std::optional<int64_t> SignedNumber(std::string_view bytes) {
    if (bytes.empty() || bytes.size() > 8) return std::nullopt;
    const int unused = 64 - 8 * static_cast<int>(bytes.size());
    return static_cast<int64_t>(BigEndian(bytes) << unused) >> unused;
}

std::optional<uint64_t> UnsignedNumber(std::string_view bytes) {
    if (bytes.size() > 1 && bytes.front() == '\0')
        bytes.remove_prefix(1);  // keeps the sign bit clear
    if (bytes.empty() || bytes.size() > 8) return std::nullopt;
    return BigEndian(bytes);
}

std::string TickText(uint64_t ticks) {
    const uint64_t seconds = ticks / 100;
    char text[64];
    std::snprintf(text, sizeof text, "%llu:%02llu:%02llu.%02llu",
                  static_cast<unsigned long long>(seconds / 3600 % 24),
                  static_cast<unsigned long long>(seconds / 60 % 60),
                  static_cast<unsigned long long>(seconds % 60),
                  static_cast<unsigned long long>(ticks % 100));
    const uint64_t days = seconds / 86400;
    if (days == 0) return text;
    return std::to_string(days) + (days == 1 ? " day, " : " days, ") + text;
}

std::string SpeedText(uint64_t bitsPerSecond) {
    // The object cannot hold a higher one.
    if (bitsPerSecond == UINT32_MAX) return "over 4.2 Gbit/s";
    if (bitsPerSecond == 0) return "";
    const char* const units[] = {" bit/s", " kbit/s", " Mbit/s", " Gbit/s"};
    uint64_t divisor = 1;
    size_t unit = 0;
    for (; unit < 3 && bitsPerSecond / divisor >= 1000; ++unit) divisor *= 1000;
    const uint64_t tenths = bitsPerSecond % divisor * 10 / divisor;
    return std::to_string(bitsPerSecond / divisor) +
           (tenths == 0 ? "" : "." + std::to_string(tenths)) + units[unit];
}

std::string TypeName(uint32_t type) {
    for (const auto& [known, name] : kTypes) {
        if (known == type) return name;
    }
    char text[24];
    std::snprintf(text, sizeof text, "type 0x%02X", static_cast<unsigned>(type));
    return text;
}

bool IsNoValue(uint32_t type) {
    return type == kNull || type == kNoSuchObject || type == kNoSuchInstance ||
           type == kEndOfMibView;
}

Content ContentOf(uint32_t type, std::string_view raw) {
    const bool isLong = type == kOctetString && raw.size() == kLongFormSize;
    const size_t wholeSize = isLong ? static_cast<uint8_t>(raw.front()) : raw.size();
    // A size that needs no long form is the device's error: show the bytes as received.
    if (!isLong || wholeSize < raw.size() - 1) return {std::string(raw), raw.size()};
    return {std::string(raw.substr(1)), wholeSize};
}

std::optional<std::string> NumberText(uint32_t type, std::string_view bytes) {
    if (type == kInteger) {
        if (const auto number = SignedNumber(bytes)) return std::to_string(*number);
    } else if (type == kCounter32 || type == kGauge32 || type == kTimeTicks || type == kCounter64) {
        if (const auto number = UnsignedNumber(bytes)) return std::to_string(*number);
    }
    return std::nullopt;
}

std::string FormatValue(uint32_t type, std::string_view bytes) {
    if (IsNoValue(type)) return "no value";
    if (const auto number = NumberText(type, bytes)) {
        return type == kTimeTicks ? *number + " (" + TickText(*UnsignedNumber(bytes)) + ")"
                                  : *number;
    }
    if (type == kOctetString && IsPrintable(bytes)) return ShownValue(bytes);
    if (type == kIpAddress && bytes.size() == 4) return IpText(bytes);
    if (type == kObjectIdentifier) {
        if (const auto oid = DecodeOid(bytes)) return OidToText(*oid);
    }
    return HexText(bytes, " ");
}

std::optional<SetValue> ParseSetValue(std::string_view type, std::string_view text,
                                      std::string& problem) {
    struct Word {
        std::string_view word;
        uint32_t type;
        char letter;
    };
    constexpr Word kWords[] = {{"integer", kInteger, 'i'},
                               {"string", kOctetString, 's'},
                               {"hex", kOctetString, 'x'},
                               {"oid", kObjectIdentifier, 'o'},
                               {"ipaddress", kIpAddress, 'a'},
                               {"counter", kCounter32, 'c'},
                               {"gauge", kGauge32, 'u'},
                               {"timeticks", kTimeTicks, 't'},
                               {"null", kNull, 'n'}};
    for (const Word& known : kWords) {
        const bool isLetter = type.size() == 1 && type.front() == known.letter;
        if (!isLetter && type != known.word) continue;
        auto bytes = ParseContent(known.type, known.letter == 'x', text, problem);
        if (!bytes) return std::nullopt;
        if (bytes->size() > 126) {
            problem =
                "the value has " + std::to_string(bytes->size()) + " bytes, a request holds 126";
            return std::nullopt;
        }
        return SetValue{known.type, std::move(*bytes)};
    }
    problem = "'" + std::string(type) +
              "' is not a type; the types are integer (i), string (s), hex (x), oid (o), "
              "ipaddress (a), counter (c), gauge (u), timeticks (t), null (n)";
    return std::nullopt;
}

}  // namespace vndiscover::host
