// The Windows firewall's settings (INetFwPolicy2).
#pragma once

#include "model/computer/computer.h"

namespace vndiscover::host {

// The active profiles, and the rules that apply to this program. Unknown if the interface does not
// exist or refuses access. Other firewall products are not covered.
FirewallState ReadFirewall();

}  // namespace vndiscover::host
