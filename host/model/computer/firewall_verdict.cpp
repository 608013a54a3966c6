#include "model/computer/firewall_verdict.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "values/plain_text.h"

namespace vndiscover::host {
namespace {

constexpr unsigned kPorts[] = {161, 3702};

const char* NameOf(uint32_t profileBit) {
    return profileBit == kDomain ? "domain" : profileBit == kPrivate ? "private" : "public";
}

// Ports as in a rule: "*", "161", "161,3702", "100-200". Words such as "RPC" cover no port.
bool CoversPort(std::string_view ports, unsigned port) {
    if (ports.empty() || ports == "*") return true;
    while (!ports.empty()) {
        const std::string part(ports.substr(0, ports.find(',')));
        ports.remove_prefix(std::min(ports.size(), part.size() + 1));
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
    const auto found =
        std::find_if(state.rules.begin(), state.rules.end(), [&](const FirewallRule& rule) {
            return rule.isAllow == isAllow && (rule.profiles & profileBit) != 0 &&
                   CoversPort(rule.remotePorts, port);
        });
    return found == state.rules.end() ? nullptr : &*found;
}

// As the firewall decides: a rule that blocks takes precedence over one that allows.
PortVerdict Judge(const FirewallState& state, const FirewallProfile& profile, unsigned port) {
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

class Commands {
  public:
    Commands(const FirewallState& state, std::string programPath)
        : state_(state), path_(std::move(programPath)) {}

    void Learn(const FirewallProfile& profile, const PortVerdict& verdict) {
        if (verdict.passage == Passage::kOpen) return;
        const std::string name = NameOf(profile.bit);
        if (profile.blocksAll) {
            AddOnce("netsh advfirewall set " + name + "profile firewallpolicy blockinbound," +
                    (profile.allowsOutbound ? "allowoutbound" : "blockoutbound"));
        } else if (const auto* rule = FindRule(state_, profile.bit, verdict.port, false)) {
            // A rule for all programs is the administrator's choice and may protect others.
            if (!rule->isForThisProgram) return;
            AddOnce("netsh advfirewall firewall delete rule name=all dir=in program=\"" + path_ +
                    "\"");
        }
        if (profiles_.find(name) == std::string::npos)
            profiles_ += (profiles_.empty() ? "" : ",") + name;
    }

    std::vector<std::string> Take() {
        if (!profiles_.empty()) {
            AddOnce(
                "netsh advfirewall firewall add rule name=\"VnDiscover\" dir=in action=allow "
                "program=\"" +
                path_ + "\" protocol=udp remoteport=161,3702 profile=" + profiles_);
        }
        return std::move(commands_);
    }
    void ForProfiles(const char* profiles) { profiles_ = profiles; }

  private:
    void AddOnce(const std::string& command) {
        if (std::find(commands_.begin(), commands_.end(), command) == commands_.end())
            commands_.push_back(command);
    }

    const FirewallState& state_;
    std::string path_, profiles_;
    std::vector<std::string> commands_;
};

}  // namespace

FirewallReport JudgeFirewall(const FirewallState& state, const std::string& programPath) {
    FirewallReport report;
    report.isKnown = state.isKnown;
    Commands commands(state, programPath);
    if (!state.isKnown) commands.ForProfiles("domain,private");
    for (const FirewallProfile& profile : state.active) {
        for (const unsigned port : kPorts) {
            report.ports.push_back(Judge(state, profile, port));
            commands.Learn(profile, report.ports.back());
        }
    }
    report.commands = commands.Take();
    return report;
}

}  // namespace vndiscover::host
