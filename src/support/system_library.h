// Libraries that are loaded at run time, from the system directory by full path: an installer runs
// from a download folder, where anybody may have put a file of the same name.
#pragma once

#include "support/owned.h"
#include "support/win.h"

namespace vndiscover {

class SystemLibrary {
  public:
    SystemLibrary() noexcept = default;
    explicit SystemLibrary(const wchar_t* fileName) noexcept;  // for example L"Ws2_32.dll"

    explicit operator bool() const noexcept { return static_cast<bool>(module_); }

    // Null if the library or the function is missing.
    template <class Function>
    Function Find(const char* name) const noexcept {
        if (!module_) return nullptr;
        return reinterpret_cast<Function>(
            reinterpret_cast<void*>(GetProcAddress(module_.Get(), name)));
    }

  private:
    Owned<ClosedBy<HMODULE, FreeLibrary>> module_;
};

}  // namespace vndiscover
