#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vndiscover::host {

struct IpAddress {
    std::string bytes;  // 4 of IPv4 or 16 of IPv6, in network order
    bool IsIPv4() const { return bytes.size() == 4; }
    // Whether one device may have it: no multicast, broadcast or unspecified address.
    bool IsUnicast() const {
        const auto first = static_cast<unsigned char>(bytes.front());
        if (IsIPv4()) return first != 0 && first < 224;
        return first != 0xFF && bytes.find_first_not_of('\0') != std::string::npos;
    }
};

// Of a text that is an address; another one may have a colon too.
inline bool IsIPv6(std::string_view address) { return address.find(':') != std::string_view::npos; }

// The zone of an IPv6 address is dropped. Empty for other text, such as a name.
std::optional<IpAddress> ParseIpAddress(std::string_view text);

std::string IpText(std::string_view bytes);

// The IPv4 network of an adapter, "10.77.1.0/24", if `address` is in it; otherwise empty.
std::string CommonNetwork(const IpAddress& address, std::string_view adapterAddress,
                          std::string_view adapterMask);

// Bytes that sort addresses by their numbers, and IPv4 before IPv6 before names.
std::string AddressOrder(std::string_view address);

}  // namespace vndiscover::host
