// How much of a supply or in a tray is left. Levels of the Printer MIB are signed: -1 "no limit",
// -2 "unknown", -3 "some left" (RFC 3805, prtMarkerSuppliesLevel and prtInputCurrentLevel).
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vndiscover::host {

constexpr int64_t kUnknownLevel = -2;

struct Level {
    std::optional<int64_t> level, maximum;  // as the device gave them; empty: see `missing`
    std::string unit;                       // "impressions"; empty: none or unknown
    bool isPercent = false;                 // the level itself is the percentage
    bool isReceptacle = false;              // the level is the remaining capacity
    const char* missing = "not read";       // why there is no level
};

// 0 to 100, rounded down; empty if unknown. A level above its maximum counts as 100.
std::optional<int> PercentOf(const Level& level);

// For a person: "40 % (400 of 1000 impressions)", "some left", "room left: 80 %".
std::string LevelText(const Level& level);

}  // namespace vndiscover::host
