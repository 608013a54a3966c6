#include "values/utc_time.h"

#include <ctime>
#include <iomanip>
#include <sstream>

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
    std::tm time = {};
    std::istringstream text(utc);
    if (!(text >> std::get_time(&time, "%Y-%m-%dT%H:%M:%SZ"))) return "";
    const int64_t days = DaysUntil(time.tm_year + 1900, time.tm_mon + 1, time.tm_mday);
    const int64_t at = ((days * 24 + time.tm_hour) * 60 + time.tm_min) * 60 + time.tm_sec;
    const auto start = static_cast<std::time_t>(at - static_cast<int64_t>(seconds));
    const std::tm* local = std::localtime(&start);
    char before[32];
    return local && std::strftime(before, sizeof before, "%Y-%m-%d %H:%M", local) != 0 ? before
                                                                                       : "";
}

}  // namespace vndiscover::host
