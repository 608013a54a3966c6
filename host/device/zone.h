// The zone of an IPv6 link-local address: the adapter through which a request leaves.
#pragma once

#include <functional>
#include <string>

namespace vndiscover::host {

// Sweeps give addresses without a zone, and directed requests to them leave by one of this
// computer's adapters only. Adds the zone of the adapter on which the device answers a ping or
// otherwise `asks` for it; other addresses, and those that do not answer, are returned unchanged.
// What was found is remembered. Blocks for a second for each adapter, and for what `asks` takes.
std::string HostWithZone(const std::string& host,
                         const std::function<bool(const std::string& host)>& asks);

}  // namespace vndiscover::host
