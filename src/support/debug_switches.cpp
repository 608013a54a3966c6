#include "support/debug_switches.h"

#include <string>

#include "support/debug_log.h"
#include "support/registry.h"

namespace vndiscover {

// Kept: the debug switch follows the registry at every call, while dbg2Log, once set, stays set for the
// life of the process.
void LoadDebugSwitches(const char* subkeyName, uint8_t defaultDebug) {
    g_debugSwitches.debug = defaultDebug;
    const std::string path =
        std::string("Software\\Varnell Osk\\") + (subkeyName ? subkeyName : "Debug");
    if (GetRegValueLong(HKEY_LOCAL_MACHINE, path.c_str(), "Debug", 0, 0) != 0) {
        g_debugSwitches.debug = 1;
    }
    if (GetRegValueLong(HKEY_LOCAL_MACHINE, path.c_str(), "Dbg2Log", 0, 0) != 0) {
        g_debugSwitches.dbg2Log = 1;
    }
}

int32_t LoadDebugSwitchesW(const wchar_t* subkeyName, uint8_t defaultDebug) {
    g_debugSwitches.debug = defaultDebug;
    const std::wstring path =
        std::wstring(L"Software\\Varnell Osk\\") + (subkeyName ? subkeyName : L"Debug");
    if (GetRegValueLong(HKEY_LOCAL_MACHINE, path.c_str(), L"Debug", 0, 0) != 0) {
        g_debugSwitches.debug = 1;
    }
    const int32_t dbg2Log = GetRegValueLong(HKEY_LOCAL_MACHINE, path.c_str(), L"Dbg2Log", 0, 0);
    if (dbg2Log != 0) g_debugSwitches.dbg2Log = 1;
    return dbg2Log;
}

}  // namespace vndiscover
