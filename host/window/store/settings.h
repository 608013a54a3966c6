// What is saved for the Windows user, below HKEY_CURRENT_USER: the settings of the window,
// communities, and SNMPv3 users. Communities and passwords are encrypted. Only this user can
// decrypt them, on this computer or wherever the account's keys are.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "device/security.h"
#include "model/scan/columns.h"

namespace vndiscover::host {

struct Settings {
    uint32_t ticks = 0b01101;  // a bit for each check box: SNMPv1, -v3, WS-Discovery, IPv4, IPv6
    uint32_t preset = 0;       // below kPresetCount
    std::array<int32_t, kColumnCount> widths{}, order{};  // widths in pixels at 96 DPI
    uint32_t hidden = 0;                                  // a bit for each Column
    uint32_t readsFound = 1;                              // devices are read after a search
    RECT place = {};                                      // of the window; empty: the default
    uint32_t isMaximized = 0;
    int32_t splitPercent = 66;    // the list's share of the width
    uint32_t refreshMinutes = 0;  // 0: only on demand
    int32_t lowPercent = 10;      // below which a supply needs attention
};
constexpr uint32_t kPresetCount = 3;
constexpr uint32_t kAllColumns = (1u << kColumnCount) - 1;

// Returns nothing if none were saved, or if they are invalid. `defaults` are used for columns that
// a former version did not have.
std::optional<Settings> LoadSettings(const Settings& defaults);
// Has no effect if the user may not write to the registry.
void SaveSettings(const Settings& settings);

constexpr size_t kMaxProfileName = 60;

// 1 to 60 characters, without backslashes and control characters. Names that differ only in letter
// case are the same.
bool IsProfileName(const std::wstring& name);

// Sorted, without the default profile, whose name is empty.
std::vector<std::wstring> ProfileNames();

struct Profile {
    Security security;
    // The passwords could be decrypted here, and belong to this user and these protocols.
    bool isOpen = false;
};
// Returns nothing if there is no such profile, or if it is invalid.
std::optional<Profile> ReadProfile(const std::wstring& name);

enum class SaveResult {
    kSaved,
    kNotSealed,   // nothing was written: passwords are never saved in the clear
    kNotWritten,  // the registry refused; an existing profile of that name is unchanged
    kLeftAlone,   // the existing profile of that name cannot be opened, so it was not replaced
};
SaveResult SaveProfile(const std::wstring& name, const Security& security);

// Returns true if it no longer exists.
bool DeleteProfile(const std::wstring& name);

// The communities as they were typed; an empty text if none were saved. Returns nothing if they
// cannot be decrypted.
std::optional<std::wstring> SavedCommunities();
// An empty text removes them.
SaveResult SaveCommunities(const std::wstring& text);

// The profile that was used last; empty: the default one.
std::wstring LastProfile();
void SaveLastProfile(const std::wstring& name);

}  // namespace vndiscover::host
