// Options of the commands that ask one device.
#pragma once

#include <string>

#include "cli/commands.h"
#include "device/device.h"

namespace vndiscover::host {

enum class TextFormat { kText, kJson };

struct DeviceOptions {
    std::string host, community, writeCommunity;
    TextFormat format = TextFormat::kText;
    V3Options v3;
};

// A command with HOST, --community and --format.
CLI::App* AddDeviceCommand(CLI::App& app, const char* name, const char* help, const char* footer,
                           DeviceOptions& options);

// Adds the SNMPv3 options, which exclude --community.
void AddDeviceV3(CLI::App& command, DeviceOptions& options);

// For a host that is neither an address nor a name with one: "no answer" alone would not tell.
void WarnIfUnknown(const std::string& host);

// Does so too. Throws CLI::ValidationError. May prompt for passwords.
Device OpenDevice(const DeviceOptions& options);

int ExitCodeOf(Status status);

}  // namespace vndiscover::host
