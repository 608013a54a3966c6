#pragma once

namespace vndiscover::host {

// The exit codes of both programs.
enum ExitCode {
    kFound = 0,
    kNone = 1,  // nothing found, not saved, or differences
    kWrongUsage = 2,
    kFailed = 2,  // the window's search did not run to its end
    kSendFailed = 3,
    kNeedsAttention = 4,
};

}  // namespace vndiscover::host
