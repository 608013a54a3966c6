// Facts about this computer that decide what a sweep can find. What could not be read is empty or
// unknown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vndiscover::host {

// All text is UTF-8.
struct AdapterAddress {
    std::string address, mask;         // mask: IPv4 only, dotted
    std::string adapter, description;  // "Ethernet 2", "Intel(R) I219-LM"
    uint32_t interfaceType = 0;        // IANA's ifType: 6 Ethernet, 71 wireless, 131 tunnel ...
    std::optional<bool> isUp;          // empty: unknown
    uint32_t zone = 0;                 // IPv6 only
};

struct AdapterList {
    bool isRead = false;  // false: the system provides no list, so a sweep has none either
    bool fits = true;     // false: the list exceeds the module's buffer, so a sweep has none
    size_t adapters = 0;
    std::vector<AdapterAddress> addresses;  // in the module's order
};

struct Route {
    std::string target;
    std::string adapter, source, gateway;  // no source: no route; no gateway: on the link
};

// An enabled rule for incoming UDP, without limits to services, interfaces, addresses, ports.
struct FirewallRule {
    std::string name;
    std::string remotePorts;  // "161,3702", "100-200", "*"
    uint32_t profiles = 0;
    bool isAllow = false;
    bool isForThisProgram = false;
};

enum FirewallProfileBit : uint32_t { kDomain = 1, kPrivate = 2, kPublic = 4 };

struct FirewallProfile {
    uint32_t bit = kPrivate;
    bool isOn = true;
    bool blocksAll = false;      // even if rules allow it
    bool allowsInbound = false;  // unless a rule blocks it
    bool allowsAnswersToBroadcasts = true;
    bool allowsOutbound = true;  // unless a rule blocks it
};

struct FirewallState {
    bool isKnown = false;
    std::vector<FirewallProfile> active;
    std::vector<FirewallRule> rules;
    bool isOverridden = false;  // a group policy decides; what is here is this computer's own part
};

struct LogSwitches {
    bool debugger = false, file = false;
};

struct Computer {
    AdapterList ipv4, ipv6;      // ipv6: link-local addresses only
    Route broadcast, multicast;  // multicast: of WS-Discovery
    FirewallState firewall;
    LogSwitches log;
    std::string programPath;
};

}  // namespace vndiscover::host
