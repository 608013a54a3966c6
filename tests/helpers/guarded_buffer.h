// A caller's buffer between bytes that are checked for changes and a page that must not be
// accessed.
#pragma once

#include <algorithm>
#include <cstring>

#include "helpers/snmp_datagrams.h"
#include "support/win.h"

namespace vndiscover {

class GuardedBuffer {
  public:
    static constexpr uint8_t kFill = 0xA5;

    // size bytes of kFill; size may be 0.
    explicit GuardedBuffer(size_t size) : size_(size) {
        const size_t room = (size + kFront + kPage - 1) / kPage * kPage;
        base_ = static_cast<uint8_t*>(
            VirtualAlloc(nullptr, room + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD before;
        VirtualProtect(base_ + room, kPage, PAGE_NOACCESS, &before);
        data_ = base_ + room - size;
        Fresh();
    }
    ~GuardedBuffer() { VirtualFree(base_, 0, MEM_RELEASE); }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    // Fills the buffer again, for the next call.
    template <class Type = uint8_t>
    Type* Fresh() {
        std::memset(base_, kFill, static_cast<size_t>(data_ - base_) + size_);
        return reinterpret_cast<Type*>(data_);
    }
    uint8_t* Data() { return data_; }
    char* Text() { return reinterpret_cast<char*>(data_); }
    int32_t Size() const { return static_cast<int32_t>(size_); }

    Bytes Content() const { return Bytes(data_, data_ + size_); }
    // Whether nothing was written to but, at most, the first bytes of the buffer.
    bool IsUntouched(size_t butFor = 0) const {
        const auto isFilled = [](uint8_t byte) { return byte == kFill; };
        return std::all_of(base_, data_, isFilled) &&
               std::all_of(data_ + butFor, data_ + size_, isFilled);
    }
    bool FrontStands() const { return IsUntouched(size_); }

  private:
    static constexpr size_t kPage = 4096;
    static constexpr size_t kFront = 512;  // longer than any value

    size_t size_;
    uint8_t* base_;
    uint8_t* data_;
};

}  // namespace vndiscover
