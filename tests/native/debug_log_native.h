// Where the lines of the log go on systems without a debugger to send them to.
#pragma once

namespace vndiscover {

// Gets every line, without a time stamp; wide ones as UTF-8. Null: nobody listens.
extern void (*g_logSink)(const char* line, void* context);
extern void* g_logSinkContext;

}  // namespace vndiscover
