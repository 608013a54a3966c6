// Settings of the window that are saved for the user, below HKEY_CURRENT_USER. No passwords.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "model/scan/device_view.h"

namespace vndiscover::host {

struct Settings {
    uint32_t ticks = 0;  // a bit for each check box, in order
    uint32_t preset = 0;
    std::array<int32_t, kColumnCount> widths{}, order{};  // widths in pixels at 96 DPI
    uint32_t hidden = 0;                                  // a bit for each Column
};
constexpr uint32_t kAllColumns = (1u << kColumnCount) - 1;

// Empty if none were saved, or if they are invalid.
std::optional<Settings> LoadSettings();
// Has no effect if the user may not write.
void KeepSettings(const Settings& settings);

}  // namespace vndiscover::host
