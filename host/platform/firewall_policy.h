// The Windows firewall's settings (INetFwPolicy2).
#ifndef VNDISCOVER_HOST_PLATFORM_FIREWALL_POLICY_H
#define VNDISCOVER_HOST_PLATFORM_FIREWALL_POLICY_H

#include "model/computer.h"

namespace vndiscover::host {

// The active profiles and the rules that concern this program. Unknown where the interface does not
// exist or refuses. Other makers' firewalls are not seen.
FirewallState ReadFirewall();

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_PLATFORM_FIREWALL_POLICY_H
