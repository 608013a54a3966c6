// Reports on what decides which devices a sweep of this computer can find, and on one device.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/asking/host_diagnosis.h"
#include "model/computer/computer.h"
#include "model/printer/report.h"

namespace vndiscover::host {

struct SweepRow {
    std::string address, adapter, description;
    std::string kind;      // "Ethernet", "wireless", "VPN", "virtual" ...
    std::string state;     // "up", "down", "no address", "automatic address"; "": unknown
    unsigned seconds = 0;  // that a sweep waits there at least; 0: nothing is sent from there
};

struct SweepPlan {
    size_t adapters = 0;
    std::vector<SweepRow> rows;  // in the sweep's order
    unsigned seconds = 0;        // that the whole sweep takes at least
};

enum class Passage {
    kOpen,
    kBrief,  // answers to a broadcast, for a few seconds
    kClosed,
};

struct PortVerdict {
    std::string profile;  // "private"
    unsigned port = 0;    // UDP, the device's: 161 or 3702
    Passage passage = Passage::kOpen;
    std::string reason;
};

struct FirewallReport {
    bool isKnown = false;
    bool isOverridden = false;       // as in FirewallState
    std::vector<PortVerdict> ports;  // of each active profile
    // For an administrator, to let answers in; empty if they are let in, or if no command can help.
    std::vector<std::string> commands;
};

struct ComputerReport {
    SweepPlan ipv4, ipv6;
    std::vector<Route> routes;  // for the broadcast, and for the WS-Discovery multicast
    FirewallReport firewall;
    LogSwitches log;
    // Sentences. Each cause alone can keep an IPv4 sweep or WS-Discovery from finding devices.
    std::vector<std::string> causes, notes;
};

// Sends nothing.
ComputerReport ReportOn(const Computer& computer);

// Whether broadcasts of this computer reach `host`; empty if that is not a dotted IPv4 address.
std::optional<bool> IsOnOwnNetwork(const AdapterList& ipv4, const std::string& host);
// How many networks this computer has addresses in. Several addresses may be in the same one.
size_t CountNetworks(const AdapterList& ipv4);

// `verdict`: the label of the first rows.
Report ReportOf(const ComputerReport& computer, const char* verdict = "Verdict");

// `diagnosis`: empty as long as the device is being asked. `isOnOwnNetwork`: see IsOnOwnNetwork.
// Two texts are the program's own, since they name what it offers: `otherwise` follows what was
// asked in vain; `noUser` is shown if the SNMPv3 engine has answered, but there is no user.
Report ReportOf(const std::optional<HostDiagnosis>& diagnosis, std::optional<bool> isOnOwnNetwork,
                const std::string& otherwise = "", const std::string& noUser = "");

// "in", "in briefly", "kept out"
const char* PassageText(Passage passage);
// "answered", "no answer", ...
const char* OutcomeText(Outcome outcome);
std::string StepText(const StepResult& step);

}  // namespace vndiscover::host
