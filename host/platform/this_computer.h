#pragma once

#include <string>

#include "model/computer/computer.h"

namespace vndiscover::host {

// These read the system, for any thread, in some milliseconds; the firewall takes perhaps a second.
Computer ThisComputer();
AdapterList IPv4Adapters();
AdapterList IPv6Adapters();  // link-local addresses only
// Whether an adapter that is up has an IPv4 address of a network. The loopback has none.
bool IsOnANetwork();
// The active profiles, and the rules that apply to this program. Unknown if the interface does
// not exist or refuses access. Other firewall products are not covered.
FirewallState ThisFirewall();

// The first IPv4 address of a name, otherwise its first IPv6 address: the module asks names at IPv4
// addresses only, and pings them at IPv6 ones. Addresses, and names that cannot be resolved, are
// returned unchanged. UTF-8. May take as long as a name server does.
std::string NumericHost(const std::string& host);

// Whether this computer has a route to the address. Sends nothing.
bool HasRoute(const std::string& address);

// Whether the text is an address, or a name that has one. UTF-8. May take as long as above.
bool HasAddress(const std::string& host);

}  // namespace vndiscover::host
