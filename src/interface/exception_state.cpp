#include "interface/exception_state.h"

#include <cstddef>  // defines __GLIBCXX__ with that runtime

#include "support/win.h"

#ifdef __GLIBCXX__
#include <cxxabi.h>

// The runtime's header declares but does not define it; the Itanium C++ ABI fixes its layout.
struct __cxxabiv1::__cxa_eh_globals {
    void* caughtExceptions;
    unsigned uncaughtExceptions;
};

namespace __gnu_cxx {
// Part of the runtime, but in none of its headers.
void __freeres();  // NOLINT(bugprone-reserved-identifier)
}  // namespace __gnu_cxx

namespace {

using ThreadState = __cxxabiv1::__cxa_eh_globals;

DWORD g_index = TLS_OUT_OF_INDEXES;
HANDLE g_heap = nullptr;  // holds every thread's state and is destroyed as a whole
// For threads that get no state of their own because memory or indexes are exhausted. It is not
// locked: if two such threads handle exceptions at the same time, one may free or leak the other's.
ThreadState g_shared = {};

}  // namespace

// These two replace the runtime's own. Callers read the last error after a caught exception.
extern "C" ThreadState* __cxxabiv1::__cxa_get_globals() noexcept {
    const DWORD error = GetLastError();
    void* state = TlsGetValue(g_index);
    if (!state && g_heap) {
        state = HeapAlloc(g_heap, HEAP_ZERO_MEMORY, sizeof(ThreadState));
        // From index 64 on, setting a value needs memory. One that is not found again would be made
        // anew for each exception.
        if (state && !TlsSetValue(g_index, state)) {
            HeapFree(g_heap, 0, state);
            state = nullptr;
        }
    }
    SetLastError(error);
    return state ? static_cast<ThreadState*>(state) : &g_shared;
}

extern "C" ThreadState* __cxxabiv1::__cxa_get_globals_fast() noexcept {
    return __cxxabiv1::__cxa_get_globals();
}

namespace vndiscover {

void OpenExceptionState() noexcept {
    g_index = TlsAlloc();
    if (g_index != TLS_OUT_OF_INDEXES) g_heap = HeapCreate(0, 0, 0);
}

void ForgetThreadsExceptions() noexcept {
    void* const state = g_heap ? TlsGetValue(g_index) : nullptr;
    if (!state) return;
    // Another module may still call an export while the thread ends.
    TlsSetValue(g_index, nullptr);
    HeapFree(g_heap, 0, state);
}

void CloseExceptionState() noexcept {
    if (g_heap) HeapDestroy(g_heap);
    g_heap = nullptr;
    if (g_index != TLS_OUT_OF_INDEXES) TlsFree(g_index);
    g_index = TLS_OUT_OF_INDEXES;
    // The runtime's 73 KB for exceptions thrown when memory is exhausted. Only because the runtime
    // is linked statically do they belong to this module alone.
    __gnu_cxx::__freeres();
}

}  // namespace vndiscover

#else

namespace vndiscover {

void OpenExceptionState() noexcept {}
void ForgetThreadsExceptions() noexcept {}
void CloseExceptionState() noexcept {}

}  // namespace vndiscover

#endif
