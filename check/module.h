// VnDiscover.dll from the program's own folder. The tests of the exports load it with this too.
#pragma once

#include <string>
#include <vector>

#include "check/windows_headers.h"
#include "vndiscover.h"

namespace check {

// The whole path of a file in the folder of this program.
std::wstring BesideProgram(const wchar_t* fileName);

class Module {
  public:
    Module();
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    DWORD Error() const { return error_; }                   // of loading; 0: it is loaded
    const std::string& Missing() const { return missing_; }  // the missing exports
    bool IsUsable() const { return handle_ && missing_.empty(); }
    HMODULE Handle() const { return handle_; }
    // From now on the module finds no adapters, so that its sweeps stay on the loopback.
    bool HideAdapters();
    // False if the system keeps it loaded.
    bool Unload();

// clang-format off: it indents each entry further than the one before
#define VN_EXPORTS(ENTRY)             \
    ENTRY(DiscoverDevices)            \
    ENTRY(DiscoverDevicesByOID)       \
    ENTRY(DiscoverDevicesByOIDjson)   \
    ENTRY(DiscoverSnmp)               \
    ENTRY(StopDiscoverSnmp)           \
    ENTRY(DiscoverSnmpV3)             \
    ENTRY(DiscoverV3DevicesByOIDjson) \
    ENTRY(DiscoverSoap)               \
    ENTRY(StopDiscoverSoap)           \
    ENTRY(DiscoverHttp)               \
    ENTRY(DiscoverBonjour)            \
    ENTRY(GetBonjourInformation)      \
    ENTRY(GetSnmpInformation)         \
    ENTRY(GetSnmpRequest)             \
    ENTRY(GetSnmpRequestRaw)          \
    ENTRY(GetNextSnmpRequestRaw)      \
    ENTRY(SetSnmpRequestRaw)          \
    ENTRY(GetSnmpRequestV3)           \
    ENTRY(GetNextSnmpRequestV3)       \
    ENTRY(VxPing)                     \
    ENTRY(IsIPv6Supported)
// clang-format on
// A member's name takes no parentheses.
#define VN_MEMBER(name) decltype(&::name) name = nullptr;  // NOLINT(bugprone-macro-parentheses)
    VN_EXPORTS(VN_MEMBER)
#undef VN_MEMBER

  private:
    HMODULE handle_ = nullptr;
    DWORD error_ = 0;
    std::string missing_;
};

// The module's import table entry for a function; null if it does not import it.
void** ImportSlot(HMODULE module, const char* name);

// A function of a system library, found as the module finds it; null if there is none.
template <class Function>
Function SystemFunction(const wchar_t* library, const char* name) {
    const HMODULE module = LoadLibraryW(library);
    return module
               ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)))
               : nullptr;
}

// Receives result messages in a message-only window.
class ResultWindow {
  public:
    ResultWindow();
    ~ResultWindow();
    ResultWindow(const ResultWindow&) = delete;
    ResultWindow& operator=(const ResultWindow&) = delete;
    HWND Handle() const { return window_; }

    struct Result {
        std::string address, value;  // both empty: the final message
    };
    std::vector<Result> results;

    static constexpr UINT kMessage = WM_APP + 1;

  private:
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM address, LPARAM value);

    HWND window_;
};

}  // namespace check
