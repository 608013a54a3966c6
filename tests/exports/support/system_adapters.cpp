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

std::string Utf8Of(const wchar_t* text) {
    char utf8[512] = {};
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8, sizeof utf8, nullptr, nullptr);
    return utf8;
}

std::string TextOf(const SOCKET_ADDRESS& address) {
    char text[64] = {};
    const auto* ipv6 = reinterpret_cast<const sockaddr_in6*>(address.lpSockaddr);
    inet_ntop(AF_INET6, &ipv6->sin6_addr, text, sizeof text);
    return text;
}

}  // namespace

std::vector<std::string> IPv4Descriptions() {
    std::vector<char> list(kListBytes);
    ULONG size = kListBytes;
    IpHelper<decltype(&GetAdaptersInfo)>("GetAdaptersInfo")(
        reinterpret_cast<IP_ADAPTER_INFO*>(list.data()), &size);
    std::vector<std::string> descriptions;
    for (auto* adapter = reinterpret_cast<IP_ADAPTER_INFO*>(list.data()); adapter;
         adapter = adapter->Next) {
        descriptions.push_back(adapter->Description);
    }
    return descriptions;
}

std::vector<IPv6Adapter> IPv6Adapters() {
    std::vector<char> list(kListBytes);
    ULONG size = kListBytes;
    IpHelper<decltype(&GetAdaptersAddresses)>("GetAdaptersAddresses")(
        AF_INET6, GAA_FLAG_INCLUDE_PREFIX, nullptr,
        reinterpret_cast<IP_ADAPTER_ADDRESSES*>(list.data()), &size);
    std::vector<IPv6Adapter> adapters;
    for (auto* entry = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(list.data()); entry;
         entry = entry->Next) {
        IPv6Adapter adapter = {Utf8Of(entry->FriendlyName), {}, entry->IfType, entry->OperStatus};
        for (auto* address = entry->FirstUnicastAddress; address; address = address->Next) {
            adapter.addresses.push_back(TextOf(address->Address));
        }
        adapters.push_back(adapter);
    }
    return adapters;
}

}  // namespace vndiscover
