// The commands. Each adds itself to the command line, runs while it is parsed, and leaves the
// process's exit code. Wrong usage that is found only then is thrown as CLI::ValidationError.
// This header includes what all of them use.
#pragma once

#include <CLI/CLI.hpp>
#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "device/device.h"
#include "model/printer/report.h"
#include "model/scan/device_writer.h"
#include "platform/console.h"
#include "values/exit_code.h"
#include "values/oid_text.h"

namespace vndiscover::host {

constexpr char kNothingSent[] = "no request could be sent";
constexpr char kAskOtherwise[] =
    ". 'vndiscover printers' and 'vndiscover sweep -c public -o sysName.0' ask otherwise";
constexpr char kAskAsOthers[] =
    ". 'vndiscover printers -c COMMUNITY' and 'vndiscover printers --v3 -u USER' ask otherwise";

// For reports on standard output. A file or a pipe gets neither marks nor colours.
inline TextStyle OutputStyle() { return {OutputWidth(), HasOutputColours(), IsOutputConsole()}; }

// The status line of a sweep that begins now: "3 s, 2 devices".
std::function<std::string()> StatusOf(const std::atomic<size_t>& count, const char* one,
                                      const char* many);
// Warns at the end of a sweep that it was stopped, or why it found nothing.
void WarnAtEnd(bool isStopped, size_t found, const std::string& nothing);

void AddPrintersCommand(CLI::App& app, int& exitCode);    // printers
void AddSweepCommand(CLI::App& app, int& exitCode);       // sweep
void AddDirectedCommands(CLI::App& app, int& exitCode);   // get, getnext, set, walk, info, printer
void AddCompareCommand(CLI::App& app, int& exitCode);     // compare
void AddWsdCommand(CLI::App& app, int& exitCode);         // wsd
void AddDiagnosisCommands(CLI::App& app, int& exitCode);  // ping, ipv6, doctor

// For texts that an unset variable of a script would leave empty: "" is wrong usage.
inline CLI::Option* MustNotBeEmpty(CLI::Option* option) {
    return option->check(
        [](const std::string& text) { return text.empty() ? "must not be empty" : ""; }, "");
}

struct V3Options {
    bool isOn = false;
    std::string user, authProtocol, authPassword, privProtocol, privPassword;
};
void AddV3Options(CLI::App& command, V3Options& options);

// Allows --v3 several times, each followed by the options of one user; see UsersOf.
void AllowSeveralUsers(CLI::App& command);
std::vector<V3Options> UsersOf(const CLI::App& command);

// Gets missing passwords from the environment or the user. Null without --v3. `number`: from 1.
std::shared_ptr<const Security> ResolveSecurity(const V3Options& options, size_t number = 1);

const Oid kSystem = {1, 3, 6, 1, 2, 1, 1};  // to check a community alone

// Throws CLI::ValidationError if the module cannot encode an SNMPv1 request of this size.
void CheckRequest(const char* argument, const std::string& community, const Oid& oid,
                  size_t valueSize = 0);
// The same if it leaves no room for the longest OID that is read of a printer.
void CheckLongestCommunity(const std::string& community);

// Adds --format; the names are of the first enumerators, and the first one is the default.
CLI::Option* AddFormat(CLI::App& command, Format& format,
                       const std::vector<std::string>& names = {"text", "json"});

struct DeviceOptions {
    std::string host, community;
    Format format = Format::kText;
    V3Options v3;
};

CLI::App* AddDeviceCommand(CLI::App& app, const char* name, const char* help, const char* footer,
                           DeviceOptions& options);

// Warns if a host is neither an address nor a name that has one: "no answer" would not say that.
// Throws CLI::ValidationError for a mistyped address.
void WarnIfUnknown(const std::string& host);

}  // namespace vndiscover::host
