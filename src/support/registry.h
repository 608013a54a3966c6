// Reads the switches of the debug log from the registry.
#pragma once

#include <cstdint>

#include "support/win.h"

namespace vndiscover {

/**
 * Sets the debug switch to 1 if the registry says so, otherwise to defaultDebug. Sets the dbg2Log
 * switch to 1 if the registry says so, and never clears it.
 * @param subkeyName  Key below HKEY_LOCAL_MACHINE\Software\Varnell Osk; null means "Debug".
 */
void LoadDebugSwitches(const char* subkeyName, uint8_t defaultDebug);

// The same for a UTF-16 name; returns the Dbg2Log value read. Nothing in the module calls it.
int32_t LoadDebugSwitchesW(const wchar_t* subkeyName, uint8_t defaultDebug);

/**
 * Reads up to four bytes of a value as a 32-bit number, whatever the value's type.
 * @param access  Access mask; 0 means KEY_READ, of the 64-bit view under WOW64.
 * @return The number, or defaultValue if the key or the value cannot be read or the value is longer
 * than four bytes. Failures are logged, except those to read "Debug" or "Dbg2Log".
 */
int32_t GetRegValueLong(HKEY hive, const char* subkey, const char* valueName, int32_t defaultValue,
                        uint32_t access);

// The same for UTF-16 names, but every failed query is logged, even of the two switches.
int32_t GetRegValueLong(HKEY hive, const wchar_t* subkey, const wchar_t* valueName,
                        int32_t defaultValue, uint32_t access);

// Non-zero when a 32-bit build runs on a 64-bit system.
int32_t IsRunningUnderWow64();

}  // namespace vndiscover
