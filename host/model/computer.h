// Facts about this computer that decide what a sweep can find. host/platform/this_computer.h has
// the real one; tests and windows may script theirs.
#ifndef VNDISCOVER_HOST_MODEL_COMPUTER_H
#define VNDISCOVER_HOST_MODEL_COMPUTER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vndiscover::host {

// All text is UTF-8.
struct AdapterAddress {
    std::string address, mask;         // mask: IPv4 alone, dotted
    std::string adapter, description;  // "Ethernet 2", "Intel(R) I219-LM"
    uint32_t interfaceType = 0;        // IANA's ifType: 6 Ethernet, 71 wireless, 131 tunnel ...
    std::optional<bool> isUp;          // empty: the system does not say
};

struct AdapterList {
    bool isRead = false;  // false: the system gives no list, so a sweep has none either
    bool fits = true;     // false: the module's room is too small for it, and it has none
    size_t adapters = 0;
    std::vector<AdapterAddress> addresses;  // in the order in which the module takes them
};

struct Route {
    std::string target;
    std::string adapter, source, gateway;  // source empty: no route; gateway empty: on the link
};

// A firewall rule for incoming traffic that is switched on, for every program or for this one, not
// limited to services, interfaces, addresses or local ports, and that covers UDP.
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
    bool blocksAll = false;      // whatever the rules say
    bool allowsInbound = false;  // what no rule covers
    bool allowsAnswersToBroadcasts = true;
};

struct FirewallState {
    bool isKnown = false;
    std::vector<FirewallProfile> active;
    std::vector<FirewallRule> rules;
};

struct LogSwitches {
    bool debugger = false, file = false;
};

// Nothing here sends anything. A call reads the system anew; failures are empty or unknown results.
class Computer {
  public:
    virtual ~Computer() = default;
    virtual AdapterList IPv4() const = 0;
    virtual AdapterList IPv6() const = 0;  // link-local addresses alone
    virtual Route RouteTo(const char* ipv4Address) const = 0;
    virtual FirewallState Firewall() const = 0;
    virtual LogSwitches Log() const = 0;
    virtual std::string ProgramPath() const = 0;
};

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_COMPUTER_H
