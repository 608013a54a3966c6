#pragma once

#include <string>
#include <vector>

#include "model/computer/computer.h"

namespace vndiscover::host {

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

FirewallReport ReportOn(const FirewallState& state, const std::string& programPath);

}  // namespace vndiscover::host
