#pragma once

#include <string>

namespace vndiscover::host {

// The IPv4 address of a name, dotted, as directed requests resolve it. Addresses, and names that
// cannot be resolved, are returned unchanged. UTF-8. May take as long as a name server does.
std::string NumericHost(const std::string& host);

// Whether this computer has a route to the address. Sends nothing.
bool HasRoute(const std::string& address);

// Whether the text is an address, or a name that has one. UTF-8. May take as long as above.
bool HasAddress(const std::string& host);

}  // namespace vndiscover::host
