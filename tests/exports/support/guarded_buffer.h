// A caller's buffer between bytes that nobody may touch, and the runtime's complaints about small
// ones.
#pragma once

#include <algorithm>

#include "helpers/bytes.h"

namespace vndiscover {

class GuardedBuffer {
  public:
    // size bytes, all of them kFill.
    explicit GuardedBuffer(size_t size) : block_(kGuard + size + kGuard, kFill), size_(size) {}

    uint8_t* Data() { return block_.data() + kGuard; }
    char* Text() { return reinterpret_cast<char*>(Data()); }
    int32_t Size() const { return static_cast<int32_t>(size_); }
    Bytes Content() const { return Bytes(block_.begin() + kGuard, block_.end() - kGuard); }
    bool GuardsStand() const {
        const auto stands = [](uint8_t byte) { return byte == kFill; };
        return std::all_of(block_.begin(), block_.begin() + kGuard, stands) &&
               std::all_of(block_.end() - kGuard, block_.end(), stands);
    }
    bool IsUntouched() const { return GuardsStand() && Content() == Bytes(size_, kFill); }

    static constexpr uint8_t kFill = 0xA5;

  private:
    static constexpr std::ptrdiff_t kGuard = 512;  // more than any value has
    Bytes block_;
    size_t size_;
};

}  // namespace vndiscover
