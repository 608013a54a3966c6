// A caller's buffer that ends at a page nobody may touch.
#pragma once

#include <cstring>

#include "support/win.h"

namespace vndiscover {

class EdgeBuffer {
  public:
    explicit EdgeBuffer(size_t size) : size_(size) {
        constexpr size_t kPage = 4096;
        const size_t room = (size + kPage - 1) / kPage * kPage;
        base_ = static_cast<char*>(
            VirtualAlloc(nullptr, room + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD before;
        VirtualProtect(base_ + room, kPage, PAGE_NOACCESS, &before);
        data_ = base_ + room - size;
    }
    ~EdgeBuffer() { VirtualFree(base_, 0, MEM_RELEASE); }
    EdgeBuffer(const EdgeBuffer&) = delete;
    EdgeBuffer& operator=(const EdgeBuffer&) = delete;

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
