// The trace log that all of the module writes to. Silent unless a switch is on. There is no log to
// a file of the caller's choice, since nothing in the module would turn it on.
#pragma once

#include <cstdint>

#if defined(__GNUC__)
#define VN_PRINTF(formatIndex, firstArgument) \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define VN_PRINTF(formatIndex, firstArgument)
#endif

namespace vndiscover {

// Process-wide flags, zero at load, read without synchronisation.
struct DebugSwitches {
    uint8_t debug;    // lines go to the debugger
    uint8_t dbg2Log;  // narrow lines are appended to VxAdmSvc.log in the current directory
};
extern DebugSwitches g_debugSwitches;

// Whether a narrow line goes anywhere.
inline bool IsNarrowLogOn() noexcept {
    return g_debugSwitches.debug != 0 || g_debugSwitches.dbg2Log != 0;
}

// Writes a local time stamp and at most 1,024 characters of message. With both switches off it
// returns at once. Preserves the calling thread's last error, which callers read afterwards.
void DebugLogA(const char* format, ...) VN_PRINTF(1, 2);

// Writes a wide line to the debugger only, whatever dbg2Log says; at most 1,024 characters, time
// stamp included.
void DebugLogW(const wchar_t* format, ...);

// The debug switch. Nothing in the module calls it.
uint8_t IsDebugLogEnabled();

}  // namespace vndiscover
