#include "model/computer/computer_report.h"

#include <cstdlib>
#include <set>
#include <utility>

#include "values/ip_address.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr unsigned kSilenceSeconds = 2;  // without an answer, after which a sweep continues
constexpr size_t kMaxIPv6Addresses = 32;

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

// IPv6: only of adapters that are up, and no more than the module has room for.
SweepPlan PlanOf(const AdapterList& list, bool isIPv6) {
    SweepPlan plan;
    plan.adapters = list.adapters;
    for (const AdapterAddress& address : list.addresses) {
        const bool hasRoom = plan.seconds < kMaxIPv6Addresses * kSilenceSeconds;
        const bool isSwept = isIPv6 ? hasRoom && address.isUp == true : list.fits;
        plan.rows.push_back({PlainText(address.address), PlainText(address.adapter),
                             PlainText(address.description), KindOf(address), StateOf(address),
                             isSwept ? kSilenceSeconds : 0});
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

constexpr unsigned kPorts[] = {161, 3702};

const char* NameOf(uint32_t profileBit) {
    return profileBit == kDomain ? "domain" : profileBit == kPrivate ? "private" : "public";
}

// Ports as in a rule: "*", "161", "161,3702", "100-200". Words such as "RPC" cover no port.
bool CoversPort(std::string_view ports, unsigned port) {
    if (ports.empty() || ports == "*") return true;
    for (const std::string& part : SplitText(ports, ",")) {
        const size_t dash = part.find('-');
        const unsigned long first = std::strtoul(part.c_str(), nullptr, 10);
        const unsigned long last =
            dash == std::string::npos ? first : std::strtoul(part.c_str() + dash + 1, nullptr, 10);
        if (first <= port && port <= last) return true;
    }
    return false;
}

const FirewallRule* FindRule(const FirewallState& state, uint32_t profileBit, unsigned port,
                             bool isAllow) {
    return FindIf(state.rules, [&](const FirewallRule& rule) {
        return rule.isAllow == isAllow && (rule.profiles & profileBit) != 0 &&
               CoversPort(rule.remotePorts, port);
    });
}

// As the firewall decides: a rule that blocks takes precedence over one that allows.
PortVerdict VerdictOn(const FirewallState& state, const FirewallProfile& profile, unsigned port) {
    const auto verdict = [&](Passage passage, std::string reason) {
        return PortVerdict{NameOf(profile.bit), port, passage, std::move(reason)};
    };
    if (!profile.isOn) return verdict(Passage::kOpen, "the firewall is off");
    if (profile.blocksAll)
        return verdict(Passage::kClosed, "all incoming traffic is blocked, whatever the rules say");
    if (const FirewallRule* rule = FindRule(state, profile.bit, port, false))
        return verdict(Passage::kClosed, "blocked by the rule \"" + PlainText(rule->name) + "\"");
    if (const FirewallRule* rule = FindRule(state, profile.bit, port, true))
        return verdict(Passage::kOpen, "let in by the rule \"" + PlainText(rule->name) + "\"");
    if (profile.allowsInbound) return verdict(Passage::kOpen, "let in by default");
    if (profile.allowsAnswersToBroadcasts)
        return verdict(Passage::kBrief,
                       "no rule lets them in, except for a few seconds after a broadcast");
    return verdict(Passage::kClosed, "no rule lets them in");
}

// Adds the command that removes what blocks a port, if anything does. Returns false if a rule for
// all programs does: it is the administrator's choice and may protect others.
bool AddUnblocking(std::vector<std::string>& commands, const FirewallState& state,
                   const FirewallProfile& profile, unsigned port, const std::string& path) {
    if (profile.blocksAll) {
        IndexOrAppend(commands, std::string("netsh advfirewall set ") + NameOf(profile.bit) +
                                    "profile firewallpolicy blockinbound," +
                                    (profile.allowsOutbound ? "allowoutbound" : "blockoutbound"));
    } else if (const FirewallRule* rule = FindRule(state, profile.bit, port, false)) {
        if (!rule->isForThisProgram) return false;
        IndexOrAppend(
            commands,
            "netsh advfirewall firewall delete rule name=all dir=in program=\"" + path + "\"");
    }
    return true;
}

FirewallReport ReportOn(const FirewallState& state, const std::string& programPath) {
    FirewallReport report = {state.isKnown, state.isOverridden, {}, {}};
    std::vector<std::string> profiles;
    if (!state.isKnown) profiles = {"domain", "private"};
    for (const FirewallProfile& profile : state.active) {
        for (const unsigned port : kPorts) {
            report.ports.push_back(VerdictOn(state, profile, port));
            if (report.ports.back().passage != Passage::kOpen &&
                AddUnblocking(report.commands, state, profile, port, programPath))
                IndexOrAppend(profiles, std::string(NameOf(profile.bit)));
        }
    }
    if (!profiles.empty()) {
        report.commands.push_back(
            "netsh advfirewall firewall add rule name=\"VnDiscover\" dir=in action=allow "
            "program=\"" +
            programPath + "\" protocol=udp remoteport=161,3702 profile=" + Joined(profiles, ","));
    }
    return report;
}

void AddFirewall(ComputerReport& report, const FirewallState& state) {
    for (const PortVerdict& verdict : report.firewall.ports) {
        if (verdict.passage == Passage::kOpen) continue;
        std::string sentence =
            "the firewall, " + verdict.profile + " profile, and answers from UDP ";
        sentence += std::to_string(verdict.port) + ": " + verdict.reason;
        (verdict.passage == Passage::kClosed ? report.causes : report.notes).push_back(sentence);
    }
    for (const FirewallProfile& profile : state.active) {
        // No cause: rules for what goes out are not read.
        if (profile.isOn && !profile.allowsOutbound)
            report.notes.push_back(std::string("the firewall, ") + NameOf(profile.bit) +
                                   " profile, lets out only what a rule allows: requests may not "
                                   "be sent");
    }
}

std::string Seconds(unsigned seconds) { return std::to_string(seconds) + " s"; }

// "eth0: Ethernet, up"
std::string AdapterText(const SweepRow& row) {
    const std::string words = Joined({row.kind, row.state});
    return words.empty() ? row.adapter : row.adapter + ": " + words;
}

ReportSection PlanSection(const char* title, const SweepPlan& plan) {
    const size_t swept = CountIf(plan.rows, [](const SweepRow& row) { return row.seconds != 0; });
    ReportSection section = {title, {}};
    section.Add("", swept == 0 ? "is not sent"
                               : "from " + std::to_string(swept) +
                                     (swept == 1 ? " address" : " addresses") + ", takes " +
                                     Seconds(plan.seconds) + " at least");
    for (const SweepRow& row : plan.rows) {
        section.Add(row.address, AdapterText(row) + ", " +
                                     (row.seconds == 0 ? "not swept" : Seconds(row.seconds)));
    }
    return section;
}

std::string RouteText(const Route& route) {
    if (route.source.empty()) return "no route";
    return "by " + (route.adapter.empty() ? "" : PlainText(route.adapter) + ", ") + route.source +
           (route.gateway.empty() ? "" : ", gateway " + route.gateway);
}

ReportSection FirewallSection(const FirewallReport& report) {
    ReportSection section = {"Firewall", {}};
    if (!report.isKnown) section.Add("", "not known here");
    for (const PortVerdict& verdict : report.ports) {
        const bool isOpen = verdict.passage == Passage::kOpen;
        section.Add("",
                    verdict.profile + " profile, answers from UDP " + std::to_string(verdict.port) +
                        ": " + PassageText(verdict.passage) + " (" + verdict.reason + ")",
                    isOpen ? Severity::kFine : Severity::kAttention);
    }
    if (report.isOverridden) {
        section.Add("", "a group policy takes precedence over this; ask who manages this computer",
                    Severity::kAttention);
    }
    if (!report.commands.empty()) section.Add("", "to let answers in, run as an administrator:");
    for (const std::string& command : report.commands) {
        section.Add("", command);
        section.rows.back().isCommand = true;
    }
    return section;
}

std::string LogText(const LogSwitches& log) {
    if (!log.file && !log.debugger) return "off";
    return Joined({log.file ? "to VxAdmSvc.log" : "", log.debugger ? "to the debugger" : ""},
                  " and ");
}

void AddStep(ReportSection& section, const char* label, const StepResult& step) {
    const bool isFine = step.outcome == Outcome::kAnswered || step.outcome == Outcome::kNotAsked;
    section.Add(label, StepText(step), isFine ? Severity::kFine : Severity::kAttention);
}

}  // namespace

ComputerReport ReportOn(const Computer& computer) {
    ComputerReport report;
    const auto addIf = [](bool isSo, std::vector<std::string>& sentences, const char* sentence) {
        if (isSo) sentences.emplace_back(sentence);
    };
    report.ipv4 = PlanOf(computer.ipv4, false);
    report.ipv6 = PlanOf(computer.ipv6, true);
    report.routes = {computer.broadcast, computer.multicast};
    report.firewall = ReportOn(computer.firewall, computer.programPath);
    report.log = computer.log;
    report.causes = {IPv4Cause(computer.ipv4, report.ipv4)};
    addIf(computer.broadcast.source.empty(), report.causes,
          "no route for the broadcast: requests may not be sent");
    addIf(computer.multicast.source.empty(), report.causes,
          "no route for the multicast: WS-Discovery Probes may not be sent");
    addIf(report.ipv6.seconds == 0, report.notes,
          "no adapter that is up has an IPv6 link-local address: no IPv6 sweep is sent");
    report.notes.push_back(DetourNote(report.ipv4));
    AddFirewall(report, computer.firewall);
    addIf(report.log.file, report.notes,
          "the log is on: VxAdmSvc.log in the current directory, communities included");
    addIf(report.log.debugger, report.notes, "the log is on: lines go to the debugger");
    for (std::vector<std::string>* const sentences : {&report.causes, &report.notes})
        EraseIf(*sentences, [](const std::string& sentence) { return sentence.empty(); });
    return report;
}

std::optional<bool> IsOnOwnNetwork(const AdapterList& ipv4, const std::string& host) {
    const auto target = ParseIpAddress(host);
    if (!target || !target->IsIPv4()) return std::nullopt;
    return AnyOf(ipv4.addresses, [&](const AdapterAddress& row) {
        return !CommonNetwork(*target, row.address, row.mask).empty();
    });
}

size_t CountNetworks(const AdapterList& ipv4) {
    std::set<std::string> networks;
    for (const AdapterAddress& row : ipv4.addresses) {
        const auto own = ParseIpAddress(row.address);
        if (own) networks.insert(CommonNetwork(*own, row.address, row.mask));
    }
    return networks.size() - networks.count("");  // an adapter without an address is in none
}

const char* PassageText(Passage passage) {
    return passage == Passage::kOpen    ? "in"
           : passage == Passage::kBrief ? "in briefly"
                                        : "kept out";
}

const char* OutcomeText(Outcome outcome) {
    constexpr const char* kTexts[] = {"not asked", "answered", "no answer", "refused", "not sent"};
    return kTexts[static_cast<size_t>(outcome)];
}

std::string StepText(const StepResult& step) {
    std::string outcome = OutcomeText(step.outcome);
    if (step.ms && step.outcome != Outcome::kNotSent) outcome += " after " + SecondsText(*step.ms);
    return step.detail.empty() ? outcome : outcome + ": " + step.detail;
}

Report ReportOf(const ComputerReport& computer, const char* verdict) {
    ReportSection first, log;
    for (const std::string& cause : computer.causes) first.Add(verdict, cause, Severity::kCritical);
    if (computer.causes.empty())
        first.Add(verdict, "nothing seen here keeps a sweep from finding devices");
    for (const std::string& note : computer.notes) first.Add("Note", note, Severity::kAttention);
    ReportSection routes = {"Routes", {}};
    for (const Route& route : computer.routes) {
        routes.Add(route.target, RouteText(route),
                   route.source.empty() ? Severity::kCritical : Severity::kFine);
    }
    log.Add("Log", LogText(computer.log));
    return {
        first,  PlanSection("IPv4 sweep", computer.ipv4), PlanSection("IPv6 sweep", computer.ipv6),
        routes, FirewallSection(computer.firewall),       log};
}

Report ReportOf(const std::optional<HostDiagnosis>& diagnosis, std::optional<bool> isOnOwnNetwork,
                const std::string& otherwise, const std::string& noUser) {
    ReportSection section;
    if (!diagnosis) {
        section.Add("Verdict", "the device is being asked", Severity::kUnknown);
        return {section};
    }
    section.Add("Verdict", VerdictOn(*diagnosis),
                IsUsable(*diagnosis)   ? Severity::kFine
                : diagnosis->isStopped ? Severity::kUnknown
                                       : Severity::kCritical);
    if (isOnOwnNetwork == false) {
        section.Add("Note",
                    "the device is on none of this computer's networks: sweeps do not reach it, "
                    "directed requests do",
                    Severity::kAttention);
    }
    AddStep(section, "Ping", diagnosis->ping);
    AddStep(section, "SNMPv1", diagnosis->v1);
    AddStep(section, "SNMPv3 engine", diagnosis->discovery);
    const bool isUserMissing =
        !diagnosis->hasUser && diagnosis->discovery.outcome == Outcome::kAnswered;
    if (isUserMissing && !noUser.empty())
        section.Add("SNMPv3 user", noUser);
    else
        AddStep(section, "SNMPv3 user", diagnosis->user);
    if (diagnosis->v1.outcome == Outcome::kSilent)
        section.Add("Asked", "SNMPv1 with " +
                                 (diagnosis->community.empty()
                                      ? "a community that is not shown"
                                      : "community '" + PlainText(diagnosis->community) + "'") +
                                 " for the variable after sysDescr.0" + otherwise);
    return {section};
}

}  // namespace vndiscover::host
