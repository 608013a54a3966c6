#include "model/computer/computer_report.h"

#include <utility>

#include "values/ip_address.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr unsigned kSilenceSeconds = 2;  // without an answer, after which a sweep goes on
constexpr size_t kMaxIPv6Addresses = 32;
constexpr char kBroadcast[] = "255.255.255.255";
constexpr char kMulticast[] = "239.255.255.250";  // of WS-Discovery

// VPN clients and hypervisors report their adapters as Ethernet, so names are checked before types.
constexpr std::pair<const char*, const char*> kKindWords[] = {
    {"vpn", "VPN"},         {"tap-windows", "VPN"},    {"wintun", "VPN"},
    {"wireguard", "VPN"},   {"anyconnect", "VPN"},     {"wan miniport", "VPN"},
    {"virtual", "virtual"}, {"vethernet", "virtual"},  {"hyper-v", "virtual"},
    {"vmware", "virtual"},  {"virtualbox", "virtual"}, {"loopback", "loopback"}};

// IANA's ifType.
constexpr std::pair<uint32_t, const char*> kKindNumbers[] = {
    {6, "Ethernet"},  {23, "VPN"},     {24, "loopback"}, {53, "virtual"},
    {71, "wireless"}, {131, "tunnel"}, {243, "mobile"},  {244, "mobile"}};

std::string KindOf(const AdapterAddress& row) {
    const std::string names = Lower(row.adapter + "\n" + row.description);
    for (const auto& [word, kind] : kKindWords) {
        if (names.find(word) != std::string::npos) return kind;
    }
    if (row.interfaceType == 0) return "";
    for (const auto& [type, kind] : kKindNumbers) {
        if (type == row.interfaceType) return kind;
    }
    return "other";
}

std::string StateOf(const AdapterAddress& row) {
    if (row.address == "0.0.0.0") return "no address";
    if (row.isUp == false) return "down";
    if (row.address.rfind("169.254.", 0) == 0) return "automatic address";
    return row.isUp ? "up" : "";
}

bool IsIdle(const SweepRow& row) { return row.state == "no address" || row.state == "down"; }

bool IsAutomatic(const SweepRow& row) { return row.state == "automatic address"; }

bool IsDetour(const SweepRow& row) {
    return row.kind == "VPN" || row.kind == "virtual" || row.kind == "tunnel" ||
           row.kind == "loopback";
}

SweepRow RowOf(const AdapterAddress& address, bool isSwept) {
    return {PlainText(address.address),
            PlainText(address.adapter),
            PlainText(address.description),
            KindOf(address),
            StateOf(address),
            isSwept ? kSilenceSeconds : 0};
}

// IPv6: only of adapters that are up, and no more than the module has room for.
SweepPlan PlanOf(const AdapterList& list, bool isIPv6) {
    SweepPlan plan;
    plan.adapters = list.adapters;
    for (const AdapterAddress& address : list.addresses) {
        const bool hasRoom = plan.seconds < kMaxIPv6Addresses * kSilenceSeconds;
        const bool isSwept = isIPv6 ? hasRoom && address.isUp == true : list.fits;
        plan.rows.push_back(RowOf(address, isSwept));
        plan.seconds += plan.rows.back().seconds;
    }
    return plan;
}

std::string IPv4Cause(const AdapterList& list, const SweepPlan& plan) {
    if (!list.isRead) return "the system provides no list of adapters: no sweep is sent";
    if (!list.fits) {
        return "there are " + std::to_string(list.adapters) +
               " adapters, but room for 32 only: no IPv4 sweep is sent";
    }
    if (plan.rows.empty()) return "no adapter has an IPv4 address: no IPv4 sweep is sent";
    if (AllOf(plan.rows, IsIdle)) return "no adapter that is up has an IPv4 address";
    const bool isUsable = AnyOf(plan.rows, [](const SweepRow& row) {
        return !IsIdle(row) && !IsAutomatic(row) && row.kind != "loopback";
    });
    if (AnyOf(plan.rows, IsAutomatic) && !isUsable) {
        return "this computer has only automatic addresses (169.254), as no server gave it one: "
               "devices with other addresses are not found";
    }
    return "";
}

std::string DetourNote(const SweepPlan& plan) {
    const size_t count = CountIf(plan.rows, [](const SweepRow& row) {
        return row.seconds != 0 && (IsIdle(row) || IsDetour(row));
    });
    if (count == 0) return "";
    return std::to_string(count) + " of the " + std::to_string(plan.rows.size()) +
           " IPv4 addresses (VPN, virtual, down, no address) may reach no device, but take " +
           std::to_string(count * kSilenceSeconds) + " s";
}

void AddFirewall(ComputerReport& report) {
    for (const PortVerdict& verdict : report.firewall.ports) {
        if (verdict.passage == Passage::kOpen) continue;
        std::string sentence =
            "the firewall, " + verdict.profile + " profile, and answers from UDP ";
        sentence += std::to_string(verdict.port) + ": " + verdict.reason;
        (verdict.passage == Passage::kClosed ? report.causes : report.notes).push_back(sentence);
    }
}

void AddLog(ComputerReport& report) {
    if (report.log.file)
        report.notes.push_back(
            "the log is on: VxAdmSvc.log in the current directory, communities included");
    if (report.log.debugger) report.notes.push_back("the log is on: lines go to the debugger");
}

void AddIf(std::vector<std::string>& sentences, const std::string& sentence) {
    if (!sentence.empty()) sentences.push_back(sentence);
}

}  // namespace

ComputerReport ReportOn(const Computer& computer) {
    ComputerReport report;
    const AdapterList ipv4 = computer.IPv4();
    report.ipv4 = PlanOf(ipv4, false);
    report.ipv6 = PlanOf(computer.IPv6(), true);
    AddIf(report.causes, IPv4Cause(ipv4, report.ipv4));
    if (report.ipv6.seconds == 0) {
        report.notes.push_back(
            "no adapter that is up has an IPv6 link-local address: no IPv6 sweep is sent");
    }
    AddIf(report.notes, DetourNote(report.ipv4));
    report.routes = {computer.RouteTo(kBroadcast), computer.RouteTo(kMulticast)};
    if (report.routes[0].source.empty())
        report.causes.push_back("no route for the broadcast: requests may not be sent");
    if (report.routes[1].source.empty())
        report.causes.push_back("no route for the multicast: WS-Discovery Probes may not be sent");
    report.firewall = ReportOn(computer.Firewall(), computer.ProgramPath());
    AddFirewall(report);
    report.log = computer.Log();
    AddLog(report);
    return report;
}

std::optional<bool> IsOnOwnNetwork(const AdapterList& ipv4, const std::string& host) {
    const auto target = ParseIpAddress(host);
    if (!target || !target->IsIPv4()) return std::nullopt;
    return AnyOf(ipv4.addresses, [&](const AdapterAddress& row) {
        return !CommonNetwork(*target, row.address, row.mask).empty();
    });
}

}  // namespace vndiscover::host
