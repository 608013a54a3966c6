// Times as scans keep them.
#pragma once

#include <cstdint>
#include <string>

namespace vndiscover::host {

// The local time, to the minute, that was this many seconds before a time such as
// "2026-11-25T04:32:23Z": "2026-11-25 05:31". Empty if `utc` is no such time.
std::string LocalTimeBefore(const std::string& utc, uint64_t seconds);

}  // namespace vndiscover::host
