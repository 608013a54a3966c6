// Times as scans hold them: "2026-11-25T04:32:23Z".
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace vndiscover::host {

std::string UtcNow();

// Reads year, month, day, hour, minute and second. Returns false if `utc` is no time.
bool ReadUtc(const std::string& utc, int (&parts)[6]);

// The local time that was this many seconds before: "2026-11-25 05:31". Empty if `utc` is no time.
std::string LocalTimeBefore(const std::string& utc, uint64_t seconds);

// A time in local time, without the date if that is today's: "05:31". Empty if `utc` is no time.
std::string ShortTime(const std::string& utc);

// Sets the format of both, such as that of the user's system. It must itself leave out today's
// date. Null restores the formats above. For the start of a program.
using TimeFormat = std::string (*)(const std::tm& local);
void SetTimeFormat(TimeFormat format);

}  // namespace vndiscover::host
