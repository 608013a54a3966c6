#include "values/utc_time.h"

#include <charconv>
#include <iterator>

namespace vndiscover::host {
namespace {

// Since 1970-01-01. Years begin in March here, so that a leap day is the last one.
int64_t DaysUntil(int year, int month, int day) {
    if (month < 3) --year;
    const int64_t days = 365LL * year + year / 4 - year / 100 + year / 400;
    return days + (153 * ((month + 9) % 12) + 2) / 5 + day - 1 - 719468;
}

TimeFormat timeFormat = nullptr;

}  // namespace

std::string UtcNow() {
    const std::time_t now = std::time(nullptr);
    char text[32] = "";
    if (const std::tm* utc = std::gmtime(&now))
        std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", utc);
    return text;
}

bool ReadUtc(const std::string& utc, int (&parts)[6]) {
    if (utc.size() != 20) return false;
    constexpr size_t kPlaces[] = {0, 5, 8, 11, 14, 17};
    for (size_t i = 0; i < std::size(kPlaces); ++i) {
        const char* from = utc.data() + kPlaces[i];
        const char* end = from + (i == 0 ? 4 : 2);
        if (std::from_chars(from, end, parts[i]).ptr != end) return false;
    }
    return true;
}

std::string LocalTimeBefore(const std::string& utc, uint64_t seconds) {
    int parts[6] = {};
    if (!ReadUtc(utc, parts)) return "";
    const auto& [year, month, day, hour, minute, second] = parts;
    const int64_t at = ((DaysUntil(year, month, day) * 24 + hour) * 60 + minute) * 60 + second;
    const auto start = static_cast<std::time_t>(at - static_cast<int64_t>(seconds));
    const std::tm* local = std::localtime(&start);
    if (local && timeFormat) return timeFormat(*local);
    char before[32];
    return local && std::strftime(before, sizeof before, "%Y-%m-%d %H:%M", local) != 0 ? before
                                                                                       : "";
}

std::string ShortTime(const std::string& utc) {
    constexpr size_t kTime = 11;  // in "2026-11-25 05:31"
    const std::string local = LocalTimeBefore(utc, 0), now = LocalTimeBefore(UtcNow(), 0);
    const bool isToday =
        !timeFormat && !local.empty() && local.compare(0, kTime, now, 0, kTime) == 0;
    return isToday ? local.substr(kTime) : local.empty() ? utc : local;
}

void SetTimeFormat(TimeFormat format) { timeFormat = format; }

}  // namespace vndiscover::host
