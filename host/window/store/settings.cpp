#include "window/store/settings.h"

#include <windows.h>

#include <algorithm>

namespace vndiscover::host {
namespace {

constexpr wchar_t kKey[] = L"Software\\Varnell Osk\\VnBrowser";
constexpr wchar_t kValue[] = L"View";
constexpr int32_t kMaxWidth = 4000;

bool IsValid(const Settings& settings) {
    std::array<int32_t, kColumnCount> sorted = settings.order;
    std::sort(sorted.begin(), sorted.end());
    for (size_t index = 0; index < kColumnCount; ++index) {
        const int32_t width = settings.widths[index];
        if (sorted[index] != static_cast<int32_t>(index) || width < 0 || width > kMaxWidth)
            return false;
    }
    return settings.preset < kPresetCount && settings.hidden < kAllColumns &&
           settings.splitPercent >= 20 && settings.splitPercent <= 80 &&
           settings.refreshMinutes <= 60 && settings.lowPercent >= 0 && settings.lowPercent <= 100;
}

}  // namespace

std::optional<Settings> LoadSettings() {
    Settings settings;
    DWORD size = sizeof settings;
    const LSTATUS status =
        RegGetValueW(HKEY_CURRENT_USER, kKey, kValue, RRF_RT_REG_BINARY, nullptr, &settings, &size);
    if (status != ERROR_SUCCESS || size != sizeof settings || !IsValid(settings))
        return std::nullopt;
    return settings;
}

void SaveSettings(const Settings& settings) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, kValue, REG_BINARY, &settings, sizeof settings);
}

}  // namespace vndiscover::host
