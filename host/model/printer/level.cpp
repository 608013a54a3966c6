#include "model/printer/printer_facts.h"

#include <algorithm>

namespace vndiscover::host {
namespace {

constexpr int64_t kNoLimit = -1;
constexpr int64_t kSomeLeft = -3;

std::string NegativeText(const Level& level) {
    if (*level.level == kNoLimit) return "no limit";
    if (*level.level == kSomeLeft) return level.isReceptacle ? "some" : "some left";
    if (*level.level == kUnknownLevel) return "unknown";
    return "unknown (" + std::to_string(*level.level) + ")";
}

std::string PercentText(const Level& level) {
    const int percent = *PercentOf(level);
    return percent == 0 && *level.level > 0 ? "under 1 %" : std::to_string(percent) + " %";
}

std::string AmountText(const Level& level) {
    const std::string unit = level.unit.empty() ? "" : " " + level.unit;
    const std::string amount = std::to_string(*level.level);
    if (level.maximum == kNoLimit) return amount + unit + ", no maximum";
    if (level.maximum.value_or(kUnknownLevel) <= 0) return amount + unit + ", maximum unknown";
    return amount + " of " + std::to_string(*level.maximum) + unit;
}

std::string Text(const Level& level) {
    if (!level.level) return level.missing;
    if (*level.level < 0) return NegativeText(level);
    if (level.isPercent) {
        if (*level.level <= 100) return PercentText(level);
        return "100 % (the device says " + std::to_string(*level.level) + " %)";
    }
    const bool hasMaximum = level.maximum.value_or(kUnknownLevel) > 0;
    if (*level.level == 0 && !hasMaximum) return level.isReceptacle ? "none" : "empty";
    std::string amount = AmountText(level);
    if (!hasMaximum) return amount;
    const bool isAbove = *level.level > *level.maximum;
    return PercentText(level) + " (" + amount + (isAbove ? ", above the maximum)" : ")");
}

}  // namespace

std::optional<int> PercentOf(const Level& level) {
    if (!level.level || *level.level < 0) return std::nullopt;
    if (level.isPercent) return static_cast<int>(std::min<int64_t>(*level.level, 100));
    if (*level.level == 0) return 0;  // whatever the maximum
    if (level.maximum.value_or(kUnknownLevel) <= 0) return std::nullopt;
    const int64_t capped = std::min(*level.level, *level.maximum);
    // As floating point: a device may send 64-bit numbers, and times 100 they would overflow.
    return static_cast<int>(static_cast<double>(capped) * 100 /
                            static_cast<double>(*level.maximum));
}

std::string LevelText(const Level& level) {
    return (level.isReceptacle ? "room left: " : "") + Text(level);
}

}  // namespace vndiscover::host
