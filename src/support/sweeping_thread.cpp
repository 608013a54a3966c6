#include "support/sweeping_thread.h"

namespace vndiscover {

bool SweepingThread::Begin() noexcept {
    // Without a handle, a thread counts as living.
    if (id_ != 0 && WaitForSingleObject(thread_.Get(), 0) != WAIT_OBJECT_0) return false;
    id_ = GetCurrentThreadId();
    // A handle, since the system gives the identifier of an ended thread to another.
    thread_.Reset(OpenThread(SYNCHRONIZE, FALSE, id_));
    return true;
}

void SweepingThread::End() noexcept {
    thread_.Reset();
    id_ = 0;
}

}  // namespace vndiscover
