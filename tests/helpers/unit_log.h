#pragma once

#include "helpers/log_capture.h"
#include "support/debug_log.h"

namespace vndiscover {

// A LogCapture that also turns the debug switch on, for code that is linked into the test itself.
class UnitLog : public LogCapture {
  public:
    UnitLog() { g_debugSwitches.debug = 1; }
    ~UnitLog() { g_debugSwitches.debug = 0; }
};

}  // namespace vndiscover
