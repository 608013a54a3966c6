// Wiping of passwords, keys and plain texts.
#pragma once

#include <cstddef>

namespace vndiscover {

// Zeroes memory that nobody reads again. Volatile keeps the compiler from leaving that out.
inline void SecureWipe(void* memory, size_t size) noexcept {
    if (size == 0) return;
    volatile unsigned char* bytes = static_cast<volatile unsigned char*>(memory);
    for (size_t i = 0; i < size; ++i) bytes[i] = 0;
}

}  // namespace vndiscover
