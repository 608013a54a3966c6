// What the commands that ask one device share.
#ifndef VNDISCOVER_HOST_CLI_DEVICE_OPTIONS_H
#define VNDISCOVER_HOST_CLI_DEVICE_OPTIONS_H

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

// SNMPv3 instead of a community.
void AddDeviceV3(CLI::App& command, DeviceOptions& options);

// Throws CLI::ValidationError. May ask for passwords.
Device OpenDevice(const DeviceOptions& options);

int ExitCodeOf(Status status);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_CLI_DEVICE_OPTIONS_H
