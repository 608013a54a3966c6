// Bounded copies into fixed fields.
#pragma once

#include <cstddef>
#include <cstring>

namespace vndiscover {

// Fills a fixed field of `size` characters (at least 1) and terminates it. Null reads as "". False:
// the text was cut.
template <class Char>
bool CopyText(Char* field, size_t size, const Char* text) noexcept {
    size_t length = 0;
    while (text && length < size - 1 && text[length] != Char{}) ++length;
    const bool isWhole = !text || text[length] == Char{};
    if (length != 0) std::memmove(field, text, length * sizeof(Char));
    field[length] = Char{};
    return isWhole;
}

template <class Char, size_t Size>
bool CopyText(Char (&field)[Size], const Char* text) noexcept {
    return CopyText(field, Size, text);
}

// Zeroes a fixed field and copies at most its size. Returns the count of bytes copied.
inline size_t FillField(void* field, size_t size, const void* bytes, size_t count) noexcept {
    const size_t kept = count < size ? count : size;
    std::memset(field, 0, size);
    if (kept != 0) std::memcpy(field, bytes, kept);
    return kept;
}

}  // namespace vndiscover
