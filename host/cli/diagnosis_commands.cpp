#include <vndiscover.h>

#include "cli/commands.h"
#include "platform/this_computer.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

constexpr char kDoctorExamples[] =
    R"(Without HOST nothing is sent: the report shows the addresses that a sweep uses,
in its order, the routes of its broadcast and multicast, whether the Windows
firewall lets answers in, and the log switches.

With HOST the device is sent one ping, one SNMPv1 request with this community,
the SNMPv3 engine discovery (over IPv6 twice) and, if its engine answers, one
SNMPv3 request with this user or an empty name; both requests are for the
variable after sysDescr.0, and are repeated if no answer comes. This takes 45 s
at most. A link-local address without its zone is looked for on each adapter, if
several are up: if it is silent, that takes up to 24 s more for each.

Examples:
  vndiscover doctor
  vndiscover doctor 192.168.1.20 --community public
  vndiscover doctor 192.168.1.20 --v3 -u admin -a SHA256 -x AES --format json

Exit codes: 0 no reason found here, or the device answers (with --v3 that user,
otherwise this community), 1 a reason was found, also one that keeps only sweeps
from finding it, or it does not answer, 2 wrong usage, 3 the requests could not
be sent.)";

constexpr char kPingExamples[] =
    R"(A name is pinged at its first IPv4 address, or without one at an IPv6 address.

Examples:
  vndiscover ping 192.168.1.20
  vndiscover ping fe80::215:99ff:fe01:203 --timeout 3000

Exit codes: 0 answered, 1 no answer, 2 wrong usage.)";

constexpr char kIPv6Examples[] = R"(Nothing is sent.

Exit codes: 0 supported, 1 not supported.)";

int RunOnComputer(const DeviceOptions& options) {
    const ComputerReport computer = ReportOn(ThisComputer());
    Report report = ReportOf(computer);
    report.front().Add("Asked", std::string("'vndiscover sweep' asks community '") +
                                    VN_DEFAULT_COMMUNITY + "' for " + VN_DEFAULT_DISCOVERY_OID +
                                    kAskOtherwise);
    Print(options.format == Format::kJson ? ComputerJson(computer)
                                          : ReportText(report, OutputStyle()));
    return computer.causes.empty() ? kFound : kNone;
}

// `address`: of the host, numeric unless it has none.
HostDiagnosis DiagnosisOf(const DeviceOptions& options, const std::string& address) {
    if (!HasAddress(options.host)) {
        HostDiagnosis diagnosis;
        diagnosis.isUnknown = true;
        return diagnosis;
    }
    CheckRequest("--community", options.community, Append(kSystem, {1, 0}));
    const Device v1({options.community, nullptr}, address);
    const Device v3(
        {"", options.v3.isOn ? ResolveSecurity(options.v3) : std::make_shared<const Security>()},
        address);
    const SweepWatch watch(StopDiscoverSnmp, [&] { return "asking " + options.host; });
    v1.ChooseAdapter();
    DiagnosisSteps steps;
    steps.ping = [&] { return v1.Ping(); };
    steps.v1 = AskerOf(v1);
    steps.v3 = AskerOf(v3);
    steps.hasUser = options.v3.isOn;
    steps.community = CommunityOf(options.community);
    steps.address = address;
    steps.hasRoute = HasRoute(address);
    steps.mayGoOn = steps.v1.mayGoOn = steps.v3.mayGoOn = [&] { return !watch.IsStopped(); };
    return Diagnose(steps);
}

int RunOnHost(const DeviceOptions& options) {
    const std::string address = NumericHost(options.host);
    const HostDiagnosis diagnosis = DiagnosisOf(options, address);
    const auto isOnOwnNetwork = IsOnOwnNetwork(IPv4Adapters(), address);
    const std::string doctor = "'vndiscover doctor " + options.host;
    const Report report =
        ReportOf(diagnosis, isOnOwnNetwork,
                 "; " + doctor + " -c COMMUNITY' and " + doctor + " --v3 -u USER' ask otherwise");
    Print(options.format == Format::kJson ? HostJson(diagnosis, isOnOwnNetwork, options.host)
                                          : ReportText(report, OutputStyle()));
    if (IsUnsendable(diagnosis)) return kSendFailed;
    return IsUsable(diagnosis) && isOnOwnNetwork != false ? kFound : kNone;
}

struct PingOptions {
    std::string host;
    unsigned timeoutMs = kPingTimeoutMs;
};

int RunPing(const PingOptions& options) {
    WarnIfUnknown(options.host);
    const bool hasAnswered =
        VxPing(ToAnsi(NumericHost(options.host)).c_str(), options.timeoutMs) != 0;
    Print(options.host + (hasAnswered ? " answered\n" : ": no answer\n"));
    return hasAnswered ? kFound : kNone;
}

int RunIPv6() {
    const bool isSupported = IsIPv6Supported() != 0;
    Print(isSupported ? "IPv6 is supported\n" : "IPv6 is not supported\n");
    return isSupported ? kFound : kNone;
}

void AddPing(CLI::App& app, int& exitCode) {
    CLI::App* ping = app.add_subcommand("ping", "Send one ICMP echo request");
    auto options = std::make_shared<PingOptions>();
    MustNotBeEmpty(ping->add_option("HOST", options->host, "Address of the host")->required());
    ping->add_option("--timeout", options->timeoutMs, "Milliseconds to wait for the answer [2000]")
        ->type_name("MS")
        ->check(CLI::Range(1u, 60000u).description(""));
    ping->footer(kPingExamples);
    ping->callback([options, &exitCode] { exitCode = RunPing(*options); });
}

void AddDoctor(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<DeviceOptions>();
    CLI::App* command = AddDeviceCommand(
        app, "doctor", "Find out why no device, or this one, answers", kDoctorExamples, *options);
    CLI::Option* host = command->get_option("HOST");
    host->required(false)->description("Address of the device [this computer only]");
    command->get_option("--community")->needs(host);
    // Both protocols are used, so a community does not exclude a user.
    AddV3Options(*command, options->v3);
    command->get_option("--v3")->needs(host)->description("Also ask as this SNMPv3 user; needs -u");
    command->callback([options, &exitCode] {
        exitCode = options->host.empty() ? RunOnComputer(*options) : RunOnHost(*options);
    });
}

}  // namespace

void AddDiagnosisCommands(CLI::App& app, int& exitCode) {
    AddPing(app, exitCode);
    CLI::App* ipv6 = app.add_subcommand("ipv6", "Show whether this computer supports IPv6");
    ipv6->footer(kIPv6Examples);
    ipv6->callback([&exitCode] { exitCode = RunIPv6(); });
    AddDoctor(app, exitCode);
}

}  // namespace vndiscover::host
