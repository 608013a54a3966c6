// A caller's buffer that ends at a page nobody may touch.
#pragma once

#include <cstring>

#include "support/win.h"

namespace vndiscover {

class GuardedBuffer {
  public:
    explicit GuardedBuffer(size_t size) : size_(size) {
        constexpr size_t kPage = 4096;
        const size_t room = (size + kPage - 1) / kPage * kPage;
        base_ = static_cast<char*>(
            VirtualAlloc(nullptr, room + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD before;
        VirtualProtect(base_ + room, kPage, PAGE_NOACCESS, &before);
        data_ = base_ + room - size;
    }
    ~GuardedBuffer() { VirtualFree(base_, 0, MEM_RELEASE); }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    // Filled with 'u', so that what was written shows.
    template <class Type = char>
    Type* Fresh() {
        std::memset(data_, 'u', size_);
        return reinterpret_cast<Type*>(data_);
    }
    const char* Text() const { return data_; }
    bool IsText() const { return strnlen(data_, size_) < size_; }

  private:
    size_t size_;
    char* base_;
    char* data_;
};

}  // namespace vndiscover
