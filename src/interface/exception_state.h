// What the statically linked C++ runtime keeps for exceptions, so that a module that comes and goes
// leaves nothing behind.
#pragma once

namespace vndiscover {

// The runtime of GCC keeps each thread's exceptions in storage that is never given back when a DLL
// goes: an index of thread-local storage, of which a process has about a thousand, with handles and
// memory for each load in which one exception was thrown. One malformed datagram throws one. So the
// module has storage of its own. Other compilers' runtimes clean up after themselves: there these
// do nothing.

void OpenExceptionState() noexcept;       // at process attach, before anything may throw
void ForgetThreadsExceptions() noexcept;  // as a thread ends
void CloseExceptionState() noexcept;      // at process detach: nothing may throw from here on

}  // namespace vndiscover
