#include "model/computer/computer.h"

#include <cstdlib>
#include <string_view>

#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

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

}  // namespace

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

}  // namespace vndiscover::host
