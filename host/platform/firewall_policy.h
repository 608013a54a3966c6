// The Windows firewall's settings (INetFwPolicy2).
#ifndef VNDISCOVER_HOST_PLATFORM_FIREWALL_POLICY_H
#define VNDISCOVER_HOST_PLATFORM_FIREWALL_POLICY_H

#include "model/computer.h"

namespace vndiscover::host {

// The active profiles, and the rules that apply to this program. Unknown if the interface does not
// exist or refuses access. Other firewall products are not covered.
FirewallState ReadFirewall();

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_PLATFORM_FIREWALL_POLICY_H
