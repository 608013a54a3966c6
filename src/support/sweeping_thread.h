// Which thread runs a manager's sweep, so that a second one at the same time is refused.
#pragma once

#include "support/owned.h"
#include "support/win.h"

namespace vndiscover {

// Not for two threads that begin at the same moment.
class SweepingThread {
  public:
    // False: a sweep is running on this thread, within one of its result messages, or on another
    // that lives. A sweep whose thread has ended is over.
    bool Begin() noexcept {
        // Without a handle, a thread counts as living.
        if (id_ != 0 && WaitForSingleObject(thread_.Get(), 0) != WAIT_OBJECT_0) return false;
        id_ = GetCurrentThreadId();
        // A handle, since the system gives the identifier of an ended thread to another.
        thread_.Reset(OpenThread(SYNCHRONIZE, FALSE, id_));
        return true;
    }
    void End() noexcept {
        thread_.Reset();
        id_ = 0;
    }

    // Whether the sweep belongs to another thread, even to one that has ended.
    bool IsAnother() const noexcept { return id_ != 0 && id_ != GetCurrentThreadId(); }

  private:
    DWORD id_ = 0;  // 0: no sweep
    Owned<ClosedBy<HANDLE, CloseHandle>> thread_;
};

}  // namespace vndiscover
