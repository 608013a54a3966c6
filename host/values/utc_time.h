// Times as scans hold them: "2026-11-25T04:32:23Z".
#pragma once

#include <cstdint>
#include <string>

namespace vndiscover::host {

std::string UtcNow();

// Year, month, day, hour, minute and second. Returns false if `utc` is no time.
bool ReadUtc(const std::string& utc, int (&parts)[6]);

// The local time that was this many seconds before: "2026-11-25 05:31". Empty if `utc` is no time.
std::string LocalTimeBefore(const std::string& utc, uint64_t seconds);

}  // namespace vndiscover::host
