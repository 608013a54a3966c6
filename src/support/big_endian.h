// Numbers as the wire and the hashes need them: most significant byte first.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vndiscover {

// Writes sizeof value bytes to out. For unsigned numbers.
template <class Number>
void StoreBigEndian(Number value, uint8_t* out) noexcept {
    for (size_t i = 0; i < sizeof value; ++i) {
        out[i] = static_cast<uint8_t>(value >> (8 * (sizeof value - 1 - i)));
    }
}

}  // namespace vndiscover
