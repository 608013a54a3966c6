// The trace log that every piece of the module writes. Silent unless a switch is on. There is no
// log bound to a file of the caller's choice: nothing in the module would turn it on.
#pragma once

#include <cstdint>

#if defined(__GNUC__)
#define VN_PRINTF(formatIndex, firstArgument) \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define VN_PRINTF(formatIndex, firstArgument)
#endif

namespace vndiscover {

// Two plain process-wide flags, zero at load, read without synchronisation.
struct DebugSwitches {
    uint8_t debug;    // lines go to the debugger
    uint8_t dbg2Log;  // narrow lines are appended to VxAdmSvc.log in the current directory
};
extern DebugSwitches g_debugSwitches;

// Whether a narrow line goes anywhere.
inline bool IsNarrowLogOn() noexcept {
    return g_debugSwitches.debug != 0 || g_debugSwitches.dbg2Log != 0;
}

// Narrow line: local time stamp and message, at most 1,024 characters of message. Both switches
// off: returns at once. Keeps the calling thread's last error, which callers read again afterwards.
void DebugLogA(const char* format, ...) VN_PRINTF(1, 2);

// Wide line, to the debugger only: dbg2Log plays no part here. Cut at 1,024 characters with its
// stamp.
void DebugLogW(const wchar_t* format, ...);

// The debug switch. Nothing in the module calls it.
uint8_t IsDebugLogEnabled();

}  // namespace vndiscover
