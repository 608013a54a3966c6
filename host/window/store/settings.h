// Settings of the window that are saved for the user, below HKEY_CURRENT_USER. No passwords.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <optional>

#include "model/scan/columns.h"

namespace vndiscover::host {

struct Settings {
    uint32_t ticks = 0b01101;  // a bit for each check box: SNMPv1, -v3, WS-Discovery, IPv4, IPv6
    uint32_t preset = 0;       // below kPresetCount
    std::array<int32_t, kColumnCount> widths{}, order{};  // widths in pixels at 96 DPI
    uint32_t hidden = 0;                                  // a bit for each Column
    uint32_t readsFound = 1;                              // reads devices after a search
    RECT place = {};                                      // of the window; empty: the default
    uint32_t isMaximized = 0;
    int32_t splitPercent = 66;    // of the width that the list has
    uint32_t refreshMinutes = 0;  // 0: only on demand
    int32_t lowPercent = 10;      // below which a supply needs attention
};
constexpr uint32_t kPresetCount = 3;
constexpr uint32_t kAllColumns = (1u << kColumnCount) - 1;

// Returns nothing if none were saved, or if they are invalid.
std::optional<Settings> LoadSettings();
// Has no effect if the user may not write.
void SaveSettings(const Settings& settings);

}  // namespace vndiscover::host
