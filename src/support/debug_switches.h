// Loads the switches of the debug log from the registry.
#pragma once

#include <cstdint>

namespace vndiscover {

/**
 * Sets the debug switch to 1 if the registry says so, otherwise to defaultDebug. Sets the dbg2Log
 * switch to 1 if the registry says so, and never clears it.
 * @param subkeyName  Key below HKEY_LOCAL_MACHINE\Software\Varnell Osk; null means "Debug".
 */
void LoadDebugSwitches(const char* subkeyName, uint8_t defaultDebug);

// The same for a UTF-16 name; returns the Dbg2Log value read. Nothing in the module calls it.
int32_t LoadDebugSwitchesW(const wchar_t* subkeyName, uint8_t defaultDebug);

}  // namespace vndiscover
