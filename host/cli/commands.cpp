#include "cli/commands.h"

#include <vndiscover.h>

#include <algorithm>

#include "platform/this_computer.h"
#include "platform/wide_text.h"
#include "values/module_types.h"
#include "values/text.h"

namespace vndiscover::host {

std::function<std::string()> StatusOf(const std::atomic<size_t>& count, const char* one,
                                      const char* many) {
    return [&count, one, many, startMs = GetTickCount64()] {
        return std::to_string((GetTickCount64() - startMs) / 1000) + " s, " +
               std::to_string(count) + " " + (count == 1 ? one : many);
    };
}

void WarnAtEnd(bool isStopped, size_t found, const std::string& nothing) {
    if (isStopped) {
        Warn("stopped");
    } else if (found == 0) {
        Warn(nothing + kDoctorHint);
    }
}

void CheckRequest(const char* argument, const std::string& community, const Oid& oid,
                  size_t valueSize) {
    const size_t size = ToAnsi(community.empty() ? VN_DEFAULT_COMMUNITY : community).size() +
                        RequestOctets(oid) + valueSize;
    if (size > kRequestMax) {
        throw CLI::ValidationError(
            argument, "community, OID and value have " + std::to_string(size) +
                          " bytes, but an SNMPv1 request holds " + std::to_string(kRequestMax));
    }
}

CLI::Option* AddFormat(CLI::App& command, Format& format, const std::vector<std::string>& names) {
    const auto choose = [&format, names](const std::string& text) {
        const auto name = std::find(names.begin(), names.end(), text);
        if (name == names.end())
            throw CLI::ValidationError("--format", "'" + text + "' is not one of " + Joined(names));
        format = static_cast<Format>(name - names.begin());
    };
    return command.add_option_function<std::string>("--format", choose, "Output: " + Joined(names))
        ->type_name("FORMAT");
}

CLI::App* AddDeviceCommand(CLI::App& app, const char* name, const char* help, const char* footer,
                           DeviceOptions& options) {
    CLI::App* command = app.add_subcommand(name, help);
    MustNotBeEmpty(command->add_option("HOST", options.host, "Address of the device")->required());
    command->add_option("-c,--community", options.community, "Read community [sesame]")
        ->type_name("NAME");
    AddFormat(*command, options.format);
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
    if (!options.v3.isOn) CheckRequest("--community", options.community, kSystem);
    Device device(ToAnsi(options.host), ToAnsi(options.community), ToAnsi(options.writeCommunity));
    device.Use(ResolveSecurity(options.v3));
    WarnIfUnknown(options.host);
    return device;
}

int ExitCodeOf(Status status) {
    if (status == Status::kSendFailed) return kSendFailed;
    return status == Status::kAnswered ? kFound : kNone;
}

}  // namespace vndiscover::host
