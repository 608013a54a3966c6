// The owner of a resource of any kind, which closes it.
#pragma once

#include <cstdio>
#include <utility>

namespace vndiscover {

// Traits: Value, Empty() (what the opening call returns on failure), Close(value).
template <class Traits>
class Owned {
  public:
    using Value = typename Traits::Value;
    explicit Owned(Value value = Traits::Empty()) noexcept : value_(value) {}
    Owned(Owned&& other) noexcept : value_(other.Release()) {}
    Owned& operator=(Owned&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    ~Owned() { Reset(); }

    Value Get() const noexcept { return value_; }
    explicit operator bool() const noexcept { return value_ != Traits::Empty(); }
    Value Release() noexcept { return std::exchange(value_, Traits::Empty()); }
    void Reset(Value next = Traits::Empty()) noexcept {  // closes what was held
        const Value old = std::exchange(value_, next);
        if (old != Traits::Empty()) Traits::Close(old);
    }
    // For opening calls that return the value through a pointer. Closes what was held.
    Value* Receive() noexcept {
        Reset();
        return &value_;
    }

  private:
    Value value_;
};

// For a handle that is null or zero when there is none.
template <class Handle, auto CloseFunction>
struct ClosedBy {
    using Value = Handle;
    static Value Empty() noexcept { return Value{}; }
    static void Close(Value value) noexcept { static_cast<void>(CloseFunction(value)); }
};
using OwnedFile = Owned<ClosedBy<std::FILE*, std::fclose>>;

}  // namespace vndiscover
