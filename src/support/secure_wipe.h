// Wipes passwords, keys and plain texts.
#pragma once

#include <cstddef>
#include <memory>

namespace vndiscover {

// Zeroes memory that is not read again. Volatile keeps the compiler from removing the writes.
inline void SecureWipe(void* memory, size_t size) noexcept {
    if (size == 0) return;
    volatile unsigned char* bytes = static_cast<volatile unsigned char*>(memory);
    for (size_t i = 0; i < size; ++i) bytes[i] = 0;
}

// Wipes a local whichever way its scope is left: const WipeAtExit wipe(key);
template <class T>
class WipeAtExit {
  public:
    explicit WipeAtExit(T& secret) noexcept : secret_(secret) {}
    ~WipeAtExit() { SecureWipe(&secret_, sizeof(T)); }
    WipeAtExit(const WipeAtExit&) = delete;
    WipeAtExit& operator=(const WipeAtExit&) = delete;

  private:
    T& secret_;
};

// For containers of secrets: every block is wiped when freed, including the old one after the
// container grows.
template <class T>
struct WipingAllocator {
    using value_type = T;
    WipingAllocator() = default;
    template <class Other>
    WipingAllocator(const WipingAllocator<Other>&) noexcept {}
    T* allocate(size_t count) { return std::allocator<T>().allocate(count); }
    void deallocate(T* block, size_t count) noexcept {
        SecureWipe(block, count * sizeof(T));
        std::allocator<T>().deallocate(block, count);
    }
    friend bool operator==(const WipingAllocator&, const WipingAllocator&) { return true; }
    friend bool operator!=(const WipingAllocator&, const WipingAllocator&) { return false; }
};

}  // namespace vndiscover
