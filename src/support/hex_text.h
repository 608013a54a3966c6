// Hexadecimal text for the log.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/debug_log.h"

namespace vndiscover {

// Writes two digits and `blanks` blanks per byte, and a terminator. Bytes that do not fit are left
// out.
template <class Char, size_t Size>
void WriteHex(Char (&text)[Size], const uint8_t* bytes, size_t count, size_t blanks) noexcept {
    constexpr char kDigits[] = "0123456789abcdef";
    size_t used = 0;
    for (size_t i = 0; i < count && used + 2 + blanks < Size; ++i) {
        text[used++] = static_cast<Char>(kDigits[bytes[i] >> 4]);
        text[used++] = static_cast<Char>(kDigits[bytes[i] & 0x0F]);
        for (size_t blank = 0; blank < blanks; ++blank) text[used++] = static_cast<Char>(' ');
    }
    text[used] = Char{};
}

// "%02x " for each of the first 173 bytes. Empty while the log is off: formatting costs more than
// building the datagram that is shown.
class HexText {
  public:
    HexText(const uint8_t* bytes, size_t count) noexcept {
        WriteHex(text_, bytes, IsNarrowLogOn() ? count : 0, 1);
    }
    const char* c_str() const noexcept { return text_; }

  private:
    char text_[520];
};

}  // namespace vndiscover
