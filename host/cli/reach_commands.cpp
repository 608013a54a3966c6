#include <vndiscover.h>

#include "cli/commands.h"
#include "device/device.h"
#include "platform/console.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

constexpr char kPingExamples[] =
    R"(An IPv4 address in dotted form is pinged over IPv4, an IPv6 address or a host
name over IPv6.

Examples:
  vndiscover ping 192.168.1.20
  vndiscover ping fe80::215:99ff:fe01:203 --timeout 3000

Exit codes: 0 answered, 1 no answer, 2 wrong usage.)";

constexpr char kIPv6Examples[] = R"(Nothing is sent.

Exit codes: 0 supported, 1 not supported.)";

struct PingOptions {
    std::string host;
    unsigned timeoutMs = kPingTimeoutMs;
};

int RunPing(const PingOptions& options) {
    WarnIfUnknown(options.host);
    const bool hasAnswered = VxPing(ToAnsi(options.host).c_str(), options.timeoutMs) != 0;
    Print(options.host + (hasAnswered ? " answered\n" : ": no answer\n"));
    return hasAnswered ? kFound : kNone;
}

int RunIPv6() {
    const bool isSupported = IsIPv6Supported() != 0;
    Print(isSupported ? "IPv6 is supported\n" : "IPv6 is not supported\n");
    return isSupported ? kFound : kNone;
}

}  // namespace

void AddReachCommands(CLI::App& app, int& exitCode) {
    CLI::App* ping = app.add_subcommand("ping", "Send one ICMP echo request");
    auto options = std::make_shared<PingOptions>();
    MustNotBeEmpty(ping->add_option("HOST", options->host, "Address of the host")->required());
    ping->add_option("--timeout", options->timeoutMs, "Milliseconds to wait for the answer [2000]")
        ->type_name("MS")
        ->check(CLI::Range(1u, 60000u).description(""));
    ping->footer(kPingExamples);
    ping->callback([options, &exitCode] { exitCode = RunPing(*options); });

    CLI::App* ipv6 = app.add_subcommand("ipv6", "Show whether this computer supports IPv6");
    ipv6->footer(kIPv6Examples);
    ipv6->callback([&exitCode] { exitCode = RunIPv6(); });
}

}  // namespace vndiscover::host
