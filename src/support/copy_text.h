// Bounded copies into fixed fields.
#pragma once

#include <cstddef>
#include <cstring>
#include <cwchar>

namespace vndiscover {

// Fills a fixed field (size >= 1) and terminates it. Null reads as "". False: the text was cut.
inline bool CopyText(char* field, size_t size, const char* text) noexcept {
    const size_t length = text ? strnlen(text, size - 1) : 0;
    if (length != 0) std::memmove(field, text, length);
    field[length] = '\0';
    return !text || text[length] == '\0';
}

template <size_t Size>
bool CopyText(char (&field)[Size], const char* text) noexcept {
    return CopyText(field, Size, text);
}

// The same for wide text; size in characters.
inline bool CopyText(wchar_t* field, size_t size, const wchar_t* text) noexcept {
    const size_t length = text ? wcsnlen(text, size - 1) : 0;
    if (length != 0) std::wmemmove(field, text, length);
    field[length] = L'\0';
    return !text || text[length] == L'\0';
}

template <size_t Size>
bool CopyText(wchar_t (&field)[Size], const wchar_t* text) noexcept {
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
