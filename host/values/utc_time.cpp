#include "values/utc_time.h"

#include <cstdio>
#include <ctime>

namespace vndiscover::host {
namespace {

// Since 1970-01-01. Years begin in March here, so that a leap day is the last one.
int64_t DaysUntil(int year, int month, int day) {
    if (month < 3) --year;
    const int64_t days = 365LL * year + year / 4 - year / 100 + year / 400;
    return days + (153 * ((month + 9) % 12) + 2) / 5 + day - 1 - 719468;
}

}  // namespace

std::string UtcNow() {
    const std::time_t now = std::time(nullptr);
    char text[32] = "";
    if (const std::tm* utc = std::gmtime(&now))
        std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", utc);
    return text;
}

std::string LocalTimeBefore(const std::string& utc, uint64_t seconds) {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (std::sscanf(utc.c_str(), "%4d-%2d-%2dT%2d:%2d:%2dZ", &year, &month, &day, &hour, &minute,
                    &second) != 6)
        return "";
    const int64_t at = ((DaysUntil(year, month, day) * 24 + hour) * 60 + minute) * 60 + second;
    const auto start = static_cast<std::time_t>(at - static_cast<int64_t>(seconds));
    const std::tm* local = std::localtime(&start);
    char text[32];
    return local && std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", local) != 0 ? text : "";
}

}  // namespace vndiscover::host
