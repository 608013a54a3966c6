#include "support/registry.h"

#include <cstring>

#include "support/debug_log.h"
#include "support/owned.h"

namespace vndiscover {
namespace {

struct RegistryKeyTraits {
    using Value = HKEY;
    static Value Empty() noexcept { return nullptr; }
    static void Close(Value key) noexcept { RegCloseKey(key); }
};
using OwnedRegistryKey = Owned<RegistryKeyTraits>;

REGSAM ChosenAccess(uint32_t access) {
    if (access != 0) return access;
    return IsRunningUnderWow64() ? KEY_READ | KEY_WOW64_64KEY : KEY_READ;
}

bool IsDebugSwitch(const char* valueName) {
    return std::strcmp(valueName, "Dbg2Log") == 0 || std::strcmp(valueName, "Debug") == 0;
}

}  // namespace

int32_t GetRegValueLong(HKEY hive, const char* subkey, const char* valueName, int32_t defaultValue,
                        uint32_t access) {
    OwnedRegistryKey key;
    const LONG opened = RegOpenKeyExA(hive, subkey, 0, ChosenAccess(access), key.Receive());
    if (opened != ERROR_SUCCESS) {
        DebugLogA("GetRegValueLong - Open registry error - %ld for %s\n", opened, subkey);
        return defaultValue;
    }
    int32_t value = defaultValue;
    DWORD type = 0;  // Kept: not checked, so the bytes of a REG_SZ or REG_BINARY value count too.
    DWORD size = sizeof value;
    const LONG queried = RegQueryValueExA(key.Get(), valueName, nullptr, &type,
                                          reinterpret_cast<BYTE*>(&value), &size);
    if (queried == ERROR_SUCCESS) return value;
    // A missing switch is the normal case and is not logged.
    if (!IsDebugSwitch(valueName)) {
        DebugLogA("GetRegValueLong??? - Get value error - %ld for %s\n", queried, valueName);
    }
    return defaultValue;
}

int32_t GetRegValueLong(HKEY hive, const wchar_t* subkey, const wchar_t* valueName,
                        int32_t defaultValue, uint32_t access) {
    OwnedRegistryKey key;
    const LONG opened = RegOpenKeyExW(hive, subkey, 0, ChosenAccess(access), key.Receive());
    if (opened != ERROR_SUCCESS) {
        DebugLogW(L"GetRegValueLong - Open registry error - %ld for %s\n", opened, subkey);
        return defaultValue;
    }
    int32_t value = defaultValue;
    DWORD type = 0;
    DWORD size = sizeof value;
    const LONG queried = RegQueryValueExW(key.Get(), valueName, nullptr, &type,
                                          reinterpret_cast<BYTE*>(&value), &size);
    if (queried == ERROR_SUCCESS) return value;
    DebugLogW(L"GetRegValueLong - Get value error - %ld for %s\n", queried, valueName);
    return defaultValue;
}

int32_t IsRunningUnderWow64() {
    using IsWow64ProcessFunction = BOOL(WINAPI*)(HANDLE, BOOL*);
    const auto isWow64Process = reinterpret_cast<IsWow64ProcessFunction>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "IsWow64Process")));
    if (!isWow64Process) return 0;
    BOOL underWow64 = FALSE;
    return isWow64Process(GetCurrentProcess(), &underWow64) ? underWow64 : 0;
}

}  // namespace vndiscover
