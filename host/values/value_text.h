// Management values: raw bytes as text, and text of the command line as raw bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "values/module_types.h"

namespace vndiscover::host {

// "INTEGER", "OCTET STRING", ...; "type 0x47" for a tag that is not SNMP's.
std::string TypeName(uint32_t type);

// Whether this type, in an answer, says that the device does not have the variable.
bool IsNoValue(uint32_t type);

// An INTEGER (signed) or one of the unsigned types in decimal; empty if malformed or another type.
std::optional<std::string> NumberText(uint32_t type, std::string_view bytes);

// The number of an INTEGER, or of one of the unsigned types; empty for malformed contents.
std::optional<int64_t> SignedNumber(std::string_view bytes);
std::optional<uint64_t> UnsignedNumber(std::string_view bytes);

// Hundredths of a second as days and time of day: "1 day, 2:03:04.05".
std::string TickText(uint64_t ticks);

// "9.6 kbit/s", "2.5 Gbit/s"; empty for 0, by which devices say that they do not know.
std::string SpeedText(uint64_t bitsPerSecond);

// One line for a person, without the type: "1", "text", "00 1B 44", "12345 (0:02:03.45)".
std::string FormatValue(uint32_t type, std::string_view bytes);

struct SetValue {
    uint32_t type;
    std::string bytes;
};
// `type` is a word or its letter: integer (i), string (s), ... Empty, with the reason in `problem`,
// if there is no such type, the text is no value of it, or exceeds the 126 bytes of a request.
std::optional<SetValue> ParseSetValue(std::string_view type, std::string_view text,
                                      std::string& problem);

}  // namespace vndiscover::host
