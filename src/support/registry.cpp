#include "support/registry.h"

#include <cstdio>
#include <cstring>
#include <cwchar>

#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/owned.h"

namespace vndiscover {
namespace {

constexpr size_t kKeyPathSize = 260;

using OwnedRegistryKey = Owned<ClosedBy<HKEY, RegCloseKey>>;

REGSAM ChosenAccess(uint32_t access) {
    if (access != 0) return access;
    return IsRunningUnderWow64() ? KEY_READ | KEY_WOW64_64KEY : KEY_READ;
}

// Returns the Dbg2Log value. Kept: the debug switch follows the registry at every call, while
// dbg2Log, once set, stays set for the life of the process.
template <class Char>
int32_t ReadSwitches(const Char* path, const Char* debugName, const Char* dbg2LogName,
                     uint8_t defaultDebug) {
    g_debugSwitches.debug = defaultDebug;
    if (GetRegValueLong(HKEY_LOCAL_MACHINE, path, debugName, 0, 0) != 0) g_debugSwitches.debug = 1;
    const int32_t dbg2Log = GetRegValueLong(HKEY_LOCAL_MACHINE, path, dbg2LogName, 0, 0);
    if (dbg2Log != 0) g_debugSwitches.dbg2Log = 1;
    return dbg2Log;
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
    if (std::strcmp(valueName, "Dbg2Log") != 0 && std::strcmp(valueName, "Debug") != 0) {
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

void LoadDebugSwitches(const char* subkeyName, uint8_t defaultDebug) {
    // On the stack: this runs whenever a thread of the host starts, where nothing may throw.
    char path[kKeyPathSize];
    snprintf(path, kKeyPathSize, "Software\\Varnell Osk\\%s", subkeyName ? subkeyName : "Debug");
    ReadSwitches(path, "Debug", "Dbg2Log", defaultDebug);
}

int32_t LoadDebugSwitchesW(const wchar_t* subkeyName, uint8_t defaultDebug) {
    wchar_t path[kKeyPathSize] = L"Software\\Varnell Osk\\";
    const size_t prefix = wcslen(path);
    CopyText(path + prefix, kKeyPathSize - prefix, subkeyName ? subkeyName : L"Debug");
    return ReadSwitches(path, L"Debug", L"Dbg2Log", defaultDebug);
}

}  // namespace vndiscover
