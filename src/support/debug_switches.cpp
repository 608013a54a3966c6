#include "support/debug_switches.h"

#include <cstdio>
#include <cwchar>

#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/registry.h"

namespace vndiscover {
namespace {

constexpr size_t kPathSize = 260;

}  // namespace

// Kept: the debug switch follows the registry at every call, while dbg2Log, once set, stays set for
// the life of the process.
void LoadDebugSwitches(const char* subkeyName, uint8_t defaultDebug) {
    g_debugSwitches.debug = defaultDebug;
    // On the stack: this runs whenever a thread of the host starts, where nothing may throw.
    char path[kPathSize];
    snprintf(path, kPathSize, "Software\\Varnell Osk\\%s", subkeyName ? subkeyName : "Debug");
    if (GetRegValueLong(HKEY_LOCAL_MACHINE, path, "Debug", 0, 0) != 0) {
        g_debugSwitches.debug = 1;
    }
    if (GetRegValueLong(HKEY_LOCAL_MACHINE, path, "Dbg2Log", 0, 0) != 0) {
        g_debugSwitches.dbg2Log = 1;
    }
}

int32_t LoadDebugSwitchesW(const wchar_t* subkeyName, uint8_t defaultDebug) {
    g_debugSwitches.debug = defaultDebug;
    wchar_t path[kPathSize] = L"Software\\Varnell Osk\\";
    const size_t prefix = wcslen(path);
    CopyText(path + prefix, kPathSize - prefix, subkeyName ? subkeyName : L"Debug");
    if (GetRegValueLong(HKEY_LOCAL_MACHINE, path, L"Debug", 0, 0) != 0) {
        g_debugSwitches.debug = 1;
    }
    const int32_t dbg2Log = GetRegValueLong(HKEY_LOCAL_MACHINE, path, L"Dbg2Log", 0, 0);
    if (dbg2Log != 0) g_debugSwitches.dbg2Log = 1;
    return dbg2Log;
}

}  // namespace vndiscover
