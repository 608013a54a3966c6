#include "values/ip_address.h"

#include <cstdint>

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#endif

namespace vndiscover::host {
namespace {

uint32_t NumberOf(const IpAddress& ipv4) {
    uint32_t number = 0;
    for (const char byte : ipv4.bytes) number = number << 8 | static_cast<uint8_t>(byte);
    return number;
}

}  // namespace

std::optional<IpAddress> ParseIpAddress(std::string_view text) {
    const bool isIPv4 = text.find(':') == std::string_view::npos;
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
    const uint32_t bits = NumberOf(*mask);
    if (bits == 0 || ((NumberOf(*own) ^ NumberOf(address)) & bits) != 0) return "";
    int length = 0;
    for (uint32_t rest = bits; rest & 0x80000000; rest <<= 1) ++length;
    std::string network = own->bytes;
    for (size_t i = 0; i < network.size(); ++i) network[i] &= mask->bytes[i];
    return IpText(network) + "/" + std::to_string(length);
}

std::string AddressOrder(std::string_view address) {
    const auto known = ParseIpAddress(address);
    if (!known) return "7" + std::string(address);
    return (known->IsIPv4() ? "4" : "6") + known->bytes;
}

}  // namespace vndiscover::host
