// The adapters as the system lists them, for comparison with what the module says about them.
#pragma once

#include <string>
#include <vector>

namespace vndiscover {

struct IPv6Adapter {
    std::string name;                    // friendly name, ASCII in the test network
    std::vector<std::string> addresses;  // lower case
    unsigned long type;
    int status;
};

// Descriptions of the IPv4 adapters, in the system's order.
std::vector<std::string> IPv4Descriptions();
std::vector<IPv6Adapter> IPv6Adapters();

}  // namespace vndiscover
