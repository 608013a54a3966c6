#include "exports/support/system_adapters.h"

#include "support/win.h"

#include <iphlpapi.h>

namespace vndiscover {
namespace {

constexpr ULONG kListBytes = 64 * 1024;

template <class Function>
Function IpHelper(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryA("iphlpapi.dll"), name)));
}

}  // namespace

std::vector<std::string> IPv4Descriptions() {
    std::vector<char> list(kListBytes);
    ULONG size = kListBytes;
    auto* adapter = reinterpret_cast<IP_ADAPTER_INFO*>(list.data());
    IpHelper<decltype(&GetAdaptersInfo)>("GetAdaptersInfo")(adapter, &size);
    std::vector<std::string> descriptions;
    for (; adapter; adapter = adapter->Next) descriptions.push_back(adapter->Description);
    return descriptions;
}

std::vector<IPv6Adapter> IPv6Adapters() {
    std::vector<char> list(kListBytes);
    ULONG size = kListBytes;
    auto* entry = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(list.data());
    IpHelper<decltype(&GetAdaptersAddresses)>("GetAdaptersAddresses")(
        AF_INET6, GAA_FLAG_INCLUDE_PREFIX, nullptr, entry, &size);
    std::vector<IPv6Adapter> adapters;
    for (; entry; entry = entry->Next) {
        const std::wstring name = entry->FriendlyName;
        IPv6Adapter adapter = {{name.begin(), name.end()}, {}, entry->IfType, entry->OperStatus};
        for (auto* unicast = entry->FirstUnicastAddress; unicast; unicast = unicast->Next) {
            const auto* ipv6 = reinterpret_cast<const sockaddr_in6*>(unicast->Address.lpSockaddr);
            char text[64] = {};
            inet_ntop(AF_INET6, &ipv6->sin6_addr, text, sizeof text);
            adapter.addresses.push_back(text);
        }
        adapters.push_back(adapter);
    }
    return adapters;
}

}  // namespace vndiscover
