// The exception state of the statically linked C++ runtime, kept by the module itself so that
// unloading it leaks nothing.
#pragma once

namespace vndiscover {

// GCC's runtime never frees its per-thread exception state when a DLL is unloaded. Each load in
// which one exception was thrown, and a malformed datagram is enough, leaks memory, handles and a
// thread-local storage index, of which a process has about a thousand. So the module has storage of
// its own. Other compilers' runtimes clean up after themselves; there these functions do nothing.

void OpenExceptionState() noexcept;       // at process attach, before anything may throw
void ForgetThreadsExceptions() noexcept;  // when a thread ends
void CloseExceptionState() noexcept;      // at process detach; nothing may throw afterwards

}  // namespace vndiscover
