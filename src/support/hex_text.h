// Bytes as the log shows them: "%02x " each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vndiscover {

constexpr size_t kHexTextSize = 520;  // the whole text with its terminator; the rest is left out

inline std::string HexText(const uint8_t* bytes, size_t count) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < count && text.size() + 3 < kHexTextSize; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 0x0F];
        text += ' ';
    }
    return text;
}

}  // namespace vndiscover
