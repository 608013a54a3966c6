// Owners that close the system's handles.
#pragma once

#include <windows.h>

#include <cstdio>
#include <utility>

namespace vndiscover::host {

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

// Traits of a handle that is null, or kEmpty, on failure and that the function kClose closes.
template <class Handle, auto kClose, auto kEmpty = nullptr>
struct ClosedBy {
    using Value = Handle;
    static Value Empty() noexcept { return kEmpty; }
    static void Close(Value value) noexcept { kClose(value); }
};

struct FileTraits {
    using Value = HANDLE;
    static Value Empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Value value) noexcept { CloseHandle(value); }
};

using OwnedFile = Owned<FileTraits>;
using OwnedStream = Owned<ClosedBy<FILE*, std::fclose>>;
using OwnedHandle = Owned<ClosedBy<HANDLE, CloseHandle>>;
using OwnedWindow = Owned<ClosedBy<HWND, DestroyWindow>>;
using OwnedKey = Owned<ClosedBy<HKEY, RegCloseKey>>;  // of the registry
using OwnedModule = Owned<ClosedBy<HMODULE, FreeLibrary>>;
using OwnedLocal = Owned<ClosedBy<void*, LocalFree>>;

}  // namespace vndiscover::host
