#include "values/ip_address.h"

#include "values/value_text.h"

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#endif

namespace vndiscover::host {

std::optional<IpAddress> ParseIpAddress(std::string_view text) {
    const bool isIPv4 = !IsIPv6(text);
    const std::string address(isIPv4 ? text : text.substr(0, text.find('%')));
    char bytes[16];
    if (address.find('\0') != std::string::npos ||
        inet_pton(isIPv4 ? AF_INET : AF_INET6, address.c_str(), bytes) != 1)
        return std::nullopt;
    return IpAddress{std::string(bytes, isIPv4 ? 4 : 16)};
}

std::string IpText(std::string_view bytes) {
    char text[64] = "";
    inet_ntop(bytes.size() == 4 ? AF_INET : AF_INET6, bytes.data(), text, sizeof text);
    return text;
}

std::string CommonNetwork(const IpAddress& address, std::string_view adapterAddress,
                          std::string_view adapterMask) {
    const auto own = ParseIpAddress(adapterAddress), mask = ParseIpAddress(adapterMask);
    if (!address.IsIPv4() || !own || !own->IsIPv4() || !mask || !mask->IsIPv4()) return "";
    const auto masked = [&](std::string bytes) {
        for (size_t i = 0; i < bytes.size(); ++i) bytes[i] &= mask->bytes[i];
        return bytes;
    };
    const std::string network = masked(own->bytes);
    const uint64_t bits = *UnsignedNumber(mask->bytes);
    if (bits == 0 || masked(address.bytes) != network) return "";
    int length = 0;
    while (bits << length & 0x80000000) ++length;
    return IpText(network) + "/" + std::to_string(length);
}

std::string AddressOrder(std::string_view address) {
    const auto known = ParseIpAddress(address);
    if (!known) return "7" + std::string(address);
    return (known->IsIPv4() ? "4" : "6") + known->bytes;
}

}  // namespace vndiscover::host
