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

// Wipes a text or an array when the scope ends, whatever way it is left.
template <class Container>
class WipeOnExit {
  public:
    explicit WipeOnExit(Container& container) noexcept : container_(container) {}
    ~WipeOnExit() { SecureWipe(container_.data(), container_.size() * sizeof(*container_.data())); }
    WipeOnExit(const WipeOnExit&) = delete;
    WipeOnExit& operator=(const WipeOnExit&) = delete;

  private:
    Container& container_;
};

}  // namespace vndiscover
