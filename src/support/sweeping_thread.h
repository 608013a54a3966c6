// Which thread runs a manager's sweep, so that a second one at the same time is refused.
#pragma once

#include "support/owned.h"
#include "support/win.h"

namespace vndiscover {

struct ThreadTraits {
    using Value = HANDLE;
    static Value Empty() noexcept { return nullptr; }
    static void Close(Value thread) noexcept { CloseHandle(thread); }
};
using OwnedThread = Owned<ThreadTraits>;

// Not for two threads that begin at the same moment.
class SweepingThread {
  public:
    // False: a sweep is running on this thread, within one of its result messages, or on another
    // that lives. A sweep whose thread has ended is over.
    bool Begin() noexcept;
    void End() noexcept;

    // Whether the sweep belongs to another thread, even to one that has ended.
    bool IsAnother() const noexcept { return id_ != 0 && id_ != GetCurrentThreadId(); }

  private:
    DWORD id_ = 0;  // 0: no sweep
    OwnedThread thread_;
};

}  // namespace vndiscover
