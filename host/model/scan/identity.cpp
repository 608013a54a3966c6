#include "model/scan/identity.h"

#include <string_view>

#include "values/ranges.h"

namespace vndiscover::host {
namespace {

bool IsPlaceholder(MergeKey key, std::string_view value) {
    constexpr std::string_view kPlaceholders = "Xx0 \t-_./:?*#";
    return value.empty() || (key == MergeKey::kSerial &&
                             value.find_first_not_of(kPlaceholders) == std::string_view::npos);
}

bool HaveCommonValue(const std::set<std::string>& one, const std::set<std::string>& other) {
    const auto& few = one.size() < other.size() ? one : other;
    const auto& many = one.size() < other.size() ? other : one;
    return AnyOf(few, [&](const std::string& value) { return many.count(value) != 0; });
}

}  // namespace

const char* KeyName(MergeKey key) {
    constexpr const char* kNames[] = {"serial number", "MAC address", "WS-Discovery endpoint",
                                      "address"};
    return kNames[static_cast<size_t>(key)];
}

void Identity::Add(MergeKey key, const std::string& value) {
    if (!IsPlaceholder(key, value)) values_[static_cast<size_t>(key)].insert(value);
}

void Identity::Add(const Identity& other) {
    for (const MergeKey key : kMergeKeys)
        values_[static_cast<size_t>(key)].insert(other.Of(key).begin(), other.Of(key).end());
}

size_t Identity::Size() const {
    size_t size = 0;
    for (const auto& values : values_) size += values.size();
    return size;
}

bool Identity::DiffersByStrongerKey(const Identity& other, MergeKey key) const {
    return AnyOf(kMergeKeys, [&](MergeKey stronger) {
        return stronger < key && !Of(stronger).empty() && !other.Of(stronger).empty() &&
               !HaveCommonValue(Of(stronger), other.Of(stronger));
    });
}

}  // namespace vndiscover::host
