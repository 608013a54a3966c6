#include "cli/device_options.h"

#include <vndiscover.h>

#include "platform/console.h"
#include "platform/host_address.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

std::string CheckedCommunity(const std::string& text, const char* option) {
    std::string community = ToAnsi(text);
    if (community.size() > VN_COMMUNITY_MAX)
        throw CLI::ValidationError(option, "255 bytes at most");
    return community;
}

}  // namespace

CLI::App* AddDeviceCommand(CLI::App& app, const char* name, const char* help, const char* footer,
                           DeviceOptions& options) {
    CLI::App* command = app.add_subcommand(name, help);
    MustNotBeEmpty(command->add_option("HOST", options.host, "Address of the device")->required());
    command->add_option("-c,--community", options.community, "Read community [sesame]")
        ->type_name("NAME");
    AddFormat<TextFormat>(*command, options.format,
                          {{"text", TextFormat::kText}, {"json", TextFormat::kJson}});
    command->footer(footer);
    return command;
}

void AddDeviceV3(CLI::App& command, DeviceOptions& options) {
    AddV3Options(command, options.v3);
    command.get_option("--v3")->excludes(command.get_option("--community"));
}

void WarnIfUnknown(const std::string& host) {
    if (!HasAddress(host)) Warn("'" + host + "' is not an address, nor a name that has one");
}

Device OpenDevice(const DeviceOptions& options) {
    Device device(ToAnsi(options.host), CheckedCommunity(options.community, "--community"),
                  CheckedCommunity(options.writeCommunity, "--write-community"));
    device.Use(ResolveSecurity(options.v3));
    WarnIfUnknown(options.host);
    return device;
}

int ExitCodeOf(Status status) {
    if (status == Status::kSendFailed) return kSendFailed;
    return status == Status::kAnswered ? kFound : kNone;
}

}  // namespace vndiscover::host
