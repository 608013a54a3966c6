// Receive waits of a few milliseconds, for tests with thousands of exchanges.
#pragma once

#include "exports/support/module.h"

namespace vndiscover {

class QuickWaits {
  public:
    // limitMs: what a wait of whole seconds lasts instead; an answer has to come within it.
    explicit QuickWaits(const Module& module, int limitMs = 100)
        : patch_(module.Handle(), "select", Select) {
        limitUs_ = limitMs * 1000;
    }

  private:
    static int WSAAPI Select(int count, fd_set* readable, fd_set* writable, fd_set* failed,
                             const timeval* limit) {
        timeval wait = {0, limit->tv_sec != 0 ? limitUs_ : static_cast<int>(limit->tv_usec)};
        return select(count, readable, writable, failed, &wait);
    }
    static inline int limitUs_;
    ImportPatch patch_;
};

}  // namespace vndiscover
