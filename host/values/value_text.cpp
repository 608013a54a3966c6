#include "values/value_text.h"

#include <charconv>
#include <cstdio>
#include <utility>

#include "values/ip_address.h"
#include "values/oid_text.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

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

// How the command line names a type.
struct TypeWord {
    std::string_view word;
    char letter;
    uint32_t type;
    const char* problem;  // of text that is no such value
};
constexpr char kNoUnsigned[] = "a counter, gauge or time is from 0 to 4294967295";
constexpr TypeWord kWords[] = {
    {"integer", 'i', kInteger, "an integer is from -2147483648 to 2147483647"},
    {"string", 's', kOctetString, ""},
    {"hex", 'x', kOctetString, "hex takes pairs of digits, for example \"00 1B 44\" or 001B44"},
    {"oid", 'o', kObjectIdentifier, "an OID is numeric, for example .1.3.6.1.2.1.1.1.0"},
    {"ipaddress", 'a', kIpAddress, "an IP address has four parts, for example 192.168.1.20"},
    {"counter", 'c', kCounter32, kNoUnsigned},
    {"gauge", 'u', kGauge32, kNoUnsigned},
    {"timeticks", 't', kTimeTicks, kNoUnsigned},
    {"null", 'n', kNull, "null takes no value"}};

// The shortest two's complement form: bytes are added until they hold the number with its sign.
std::optional<std::string> ParseInteger(std::string_view text, int64_t lowest, int64_t highest) {
    int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || number < lowest || number > highest)
        return std::nullopt;
    std::string bytes(1, static_cast<char>(number & 0xFF));
    for (; number < -128 || number > 127; bytes.insert(0, 1, static_cast<char>(number & 0xFF)))
        number >>= 8;
    return bytes;
}

std::optional<std::string> ParseContent(const TypeWord& as, std::string_view text) {
    if (as.letter == 's') return std::string(text);
    if (as.letter == 'x') {
        const bool isPrefixed = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
        return ParseHex(text.substr(isPrefixed ? 2 : 0), " :-");
    }
    if (as.type == kObjectIdentifier) {
        const auto oid = ParseOid(text);
        return oid && oid->size() >= 2 ? std::optional(EncodeOid(*oid)) : std::nullopt;
    }
    if (as.type == kIpAddress) {
        const auto ip = ParseIpAddress(text);
        return ip && ip->IsIPv4() ? std::optional(ip->bytes) : std::nullopt;
    }
    if (as.type == kNull) return text.empty() ? std::optional("") : std::nullopt;
    return as.type == kInteger ? ParseInteger(text, INT32_MIN, INT32_MAX)
                               : ParseInteger(text, 0, UINT32_MAX);
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
    const auto part = [](uint64_t number) { return static_cast<unsigned>(number); };
    char text[64];
    std::snprintf(text, sizeof text, "%u:%02u:%02u.%02u", part(seconds / 3600 % 24),
                  part(seconds / 60 % 60), part(seconds % 60), part(ticks % 100));
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
    const auto* known = FindIf(kTypes, [&](const auto& one) { return one.first == type; });
    return known ? known->second : "type 0x" + HexText({reinterpret_cast<char*>(&type), 1}, "");
}

bool IsNoValue(uint32_t type) {
    return type == kNull || type == kNoSuchObject || type == kNoSuchInstance ||
           type == kEndOfMibView;
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
    const TypeWord* const known = FindIf(kWords, [&](const TypeWord& one) {
        return type == one.word || type == std::string_view(&one.letter, 1);
    });
    if (!known) {
        problem = "'" + std::string(type) +
                  "' is not a type; the types are integer (i), string (s), hex (x), oid (o), "
                  "ipaddress (a), counter (c), gauge (u), timeticks (t), null (n)";
        return std::nullopt;
    }
    auto bytes = ParseContent(*known, text);
    if (bytes && bytes->size() <= 126) return SetValue{known->type, std::move(*bytes)};
    problem = bytes
                  ? "the value has " + std::to_string(bytes->size()) + " bytes, a request holds 126"
                  : known->problem;
    return std::nullopt;
}

}  // namespace vndiscover::host
