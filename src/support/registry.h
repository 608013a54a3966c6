// Reads numbers from the registry, for the debug switches.
#pragma once

#include <cstdint>

#include "support/win.h"

namespace vndiscover {

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
