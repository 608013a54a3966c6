// What on this computer decides which devices a sweep can find.
#ifndef VNDISCOVER_HOST_MODEL_COMPUTER_REPORT_H
#define VNDISCOVER_HOST_MODEL_COMPUTER_REPORT_H

#include <optional>
#include <string>
#include <vector>

#include "model/computer.h"
#include "model/firewall_verdict.h"

namespace vndiscover::host {

struct SweepRow {
    std::string address, adapter, description;
    std::string kind;      // "Ethernet", "wireless", "VPN", "virtual" ...
    std::string state;     // "up", "down", "no address", "automatic address", "" for not known
    unsigned seconds = 0;  // that a sweep waits there at least; 0: it does not send from there
};

// Of one protocol family.
struct SweepPlan {
    size_t adapters = 0;
    std::vector<SweepRow> rows;  // in the sweep's order
    unsigned seconds = 0;        // of the whole sweep at least
};

struct ComputerReport {
    SweepPlan ipv4, ipv6;
    std::vector<Route> routes;  // of the broadcast, and of the WS-Discovery multicast
    FirewallReport firewall;
    LogSwitches log;
    // Sentences. A cause alone can keep an IPv4 sweep, or WS-Discovery, from finding anything.
    std::vector<std::string> causes, notes;
};

// Sends nothing.
ComputerReport ReportOn(const Computer& computer);

// Whether broadcasts of this computer get to `host`; empty: it is no IPv4 address in dotted form.
std::optional<bool> IsOnOwnNetwork(const AdapterList& ipv4, const std::string& host);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_COMPUTER_REPORT_H
