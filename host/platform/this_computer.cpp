#include "platform/this_computer.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <windows.h>

#include <iphlpapi.h>

#include <algorithm>
#include <memory>

#include "platform/owned.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/ip_address.h"

namespace vndiscover::host {

namespace {

// The module's buffer for the list of IPv4 adapters: about 32 records.
constexpr ULONG kModuleListBytes = 22528;
constexpr ULONG kFirstListBytes = 15000;
constexpr int kListAttempts = 3;
constexpr char kLogKey[] = "Software\\Varnell Osk\\VnInst";

OwnedModule LoadIpHelper() {
    const std::wstring path = SystemFile(L"IPHLPAPI.DLL");
    return OwnedModule(path.empty() ? nullptr : LoadLibraryW(path.c_str()));
}

template <class Function>
Function* Find(const OwnedModule& helper, const char* name) {
    if (!helper) return nullptr;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(helper.Get(), name)));
}
// Takes the type from the declaration without linking to the function.
#define FIND(helper, function) Find<decltype(function)>(helper, #function)

template <class Record>
struct List {
    std::unique_ptr<uint8_t[]> block;
    ULONG neededBytes = 0;
    DWORD error = ERROR_NOT_SUPPORTED;
    const Record* First() const {
        return error == ERROR_SUCCESS ? reinterpret_cast<const Record*>(block.get()) : nullptr;
    }
};

// Calls `read` with a block and its size, and again with a larger one if it asks for that.
template <class Record, class Read>  // DWORD Read(Record*, ULONG*)
List<Record> ReadList(ULONG firstBytes, Read read) {
    List<Record> list;
    list.neededBytes = firstBytes;
    for (int attempt = 0; attempt < kListAttempts; ++attempt) {
        list.block = std::make_unique<uint8_t[]>(list.neededBytes);
        list.error = read(reinterpret_cast<Record*>(list.block.get()), &list.neededBytes);
        if (list.error != ERROR_BUFFER_OVERFLOW) break;
    }
    return list;
}

List<IP_ADAPTER_INFO> ReadInfo(const OwnedModule& helper) {
    const auto getInfo = FIND(helper, GetAdaptersInfo);
    if (!getInfo) return {};
    return ReadList<IP_ADAPTER_INFO>(kModuleListBytes, [&](IP_ADAPTER_INFO* record, ULONG* size) {
        return getInfo(record, size);
    });
}

List<IP_ADAPTER_ADDRESSES> ReadAddresses(const OwnedModule& helper, ULONG family, ULONG flags) {
    const auto getAddresses = FIND(helper, GetAdaptersAddresses);
    if (!getAddresses) return {};
    return ReadList<IP_ADAPTER_ADDRESSES>(
        kFirstListBytes, [&](IP_ADAPTER_ADDRESSES* record, ULONG* size) {
            return getAddresses(family, flags, nullptr, record, size);
        });
}

List<IP_ADAPTER_ADDRESSES> ReadDetails(const OwnedModule& helper) {
    return ReadAddresses(
        helper, AF_UNSPEC,
        GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER);
}

void Describe(AdapterAddress& row, const IP_ADAPTER_ADDRESSES& adapter) {
    row.adapter = adapter.FriendlyName ? ToUtf8(adapter.FriendlyName) : "";
    row.description = adapter.Description ? ToUtf8(adapter.Description) : "";
    row.interfaceType = adapter.IfType;
    row.isUp = adapter.OperStatus == IfOperStatusUp;
}

AdapterAddress RowOf(const IP_ADAPTER_INFO& info, const IP_ADDR_STRING& entry,
                     const List<IP_ADAPTER_ADDRESSES>& details) {
    AdapterAddress row;
    row.address = entry.IpAddress.String;
    row.mask = entry.IpMask.String;
    row.adapter = row.description = info.Description;
    row.interfaceType = info.Type;
    for (const auto* adapter = details.First(); adapter; adapter = adapter->Next) {
        if (adapter->AdapterName && strcmp(adapter->AdapterName, info.AdapterName) == 0)
            Describe(row, *adapter);
    }
    return row;
}

void AddLinkLocal(AdapterList& list, const IP_ADAPTER_ADDRESSES& adapter) {
    for (const auto* entry = adapter.FirstUnicastAddress; entry; entry = entry->Next) {
        if (!entry->Address.lpSockaddr ||
            entry->Address.iSockaddrLength < static_cast<int>(sizeof(sockaddr_in6)))
            continue;
        sockaddr_in6 address;
        memcpy(&address, entry->Address.lpSockaddr, sizeof address);
        AdapterAddress row;
        row.address = IpText({reinterpret_cast<const char*>(&address.sin6_addr), 16});
        row.zone = address.sin6_scope_id;
        Describe(row, adapter);
        if (row.address.rfind("fe80", 0) == 0) list.addresses.push_back(row);
    }
}

bool IsSwitchedOn(const char* name) {
    // At most four bytes of any type, as the module reads its switches.
    DWORD value = 0;
    DWORD size = sizeof value;
    const LSTATUS error = RegGetValueA(HKEY_LOCAL_MACHINE, kLogKey, name, RRF_RT_ANY | RRF_NOEXPAND,
                                       nullptr, &value, &size);
    return error == ERROR_SUCCESS && value != 0;
}

Route RouteTo(const char* ipv4Address) {
    Route route;
    route.target = ipv4Address;
    const OwnedModule helper = LoadIpHelper();
    const auto getBestRoute = FIND(helper, GetBestRoute);
    MIB_IPFORWARDROW row = {};
    in_addr target = {};
    target.s_addr = inet_addr(ipv4Address);
    if (!getBestRoute || getBestRoute(target.s_addr, 0, &row) != NO_ERROR) return route;
    const auto infos = ReadInfo(helper);
    for (const auto* info = infos.First(); info; info = info->Next) {
        if (info->Index != row.dwForwardIfIndex) continue;
        const AdapterAddress first = RowOf(*info, info->IpAddressList, ReadDetails(helper));
        route.adapter = first.adapter;
        route.source = first.address;
    }
    // The route may be through an adapter that is not in the list, such as the loopback.
    if (route.source.empty()) route.source = "interface " + std::to_string(row.dwForwardIfIndex);
    in_addr gateway = {};
    gateway.s_addr = row.dwForwardNextHop;
    const std::string gatewayText = inet_ntoa(gateway);
    // For a route on the link this is the adapter's own address, or none.
    if (gateway.s_addr != 0 && gatewayText != route.source) route.gateway = gatewayText;
    return route;
}

}  // namespace

AdapterList IPv4Adapters() {
    const OwnedModule helper = LoadIpHelper();
    const auto infos = ReadInfo(helper);
    const auto details = ReadDetails(helper);
    AdapterList list;
    list.isRead = infos.error == ERROR_SUCCESS || infos.error == ERROR_NO_DATA;
    list.fits = infos.neededBytes <= kModuleListBytes;
    for (const auto* info = infos.First(); info; info = info->Next) {
        ++list.adapters;
        for (const IP_ADDR_STRING* entry = &info->IpAddressList; entry; entry = entry->Next) {
            if (entry->IpAddress.String[0] && entry->IpMask.String[0])
                list.addresses.push_back(RowOf(*info, *entry, details));
        }
    }
    return list;
}

AdapterList IPv6Adapters() {
    const OwnedModule helper = LoadIpHelper();
    // With the module's flag, because of which the system may refuse the list.
    const auto adapters = ReadAddresses(helper, AF_INET6, GAA_FLAG_INCLUDE_PREFIX);
    AdapterList list;
    list.isRead = adapters.error == ERROR_SUCCESS || adapters.error == ERROR_NO_DATA;
    for (const auto* adapter = adapters.First(); adapter; adapter = adapter->Next) {
        ++list.adapters;
        AddLinkLocal(list, *adapter);
    }
    return list;
}

Computer ThisComputer() {
    return {IPv4Adapters(),
            IPv6Adapters(),
            RouteTo("255.255.255.255"),
            RouteTo("239.255.255.250"),
            ThisFirewall(),
            {IsSwitchedOn("Debug"), IsSwitchedOn("Dbg2Log")},
            OwnPath()};
}

namespace {

// The right to use Windows Sockets.
struct WinSockTraits {
    using Value = bool;
    static Value Empty() noexcept { return false; }
    static void Close(Value) noexcept { WSACleanup(); }
};

struct SocketTraits {
    using Value = SOCKET;
    static Value Empty() noexcept { return INVALID_SOCKET; }
    static void Close(Value value) noexcept { closesocket(value); }
};

// Its first address as text; empty if it has none.
std::string AddressOf(const std::string& host, int family) {
    WSADATA data;
    const Owned<WinSockTraits> winSock(WSAStartup(MAKEWORD(2, 2), &data) == 0);
    addrinfo hints = {};
    hints.ai_family = family;
    Owned<ClosedBy<addrinfo*, freeaddrinfo>> list;
    if (getaddrinfo(ToAnsi(host).c_str(), nullptr, &hints, list.Receive()) != 0 || !list) return "";
    char text[64] = "";
    getnameinfo(list.Get()->ai_addr, static_cast<socklen_t>(list.Get()->ai_addrlen), text,
                sizeof text, nullptr, 0, NI_NUMERICHOST);
    return text;
}

}  // namespace

std::string NumericHost(const std::string& host) {
    if (host.find(':') != std::string::npos) return host;
    const std::string address = AddressOf(host, AF_INET);
    return address.empty() ? host : address;
}

bool HasRoute(const std::string& address) {
    WSADATA data;
    const Owned<WinSockTraits> winSock(WSAStartup(MAKEWORD(2, 2), &data) == 0);
    addrinfo hints = {};
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = SOCK_DGRAM;
    Owned<ClosedBy<addrinfo*, freeaddrinfo>> list;
    // Not port 161, which may be what is blocked.
    if (getaddrinfo(address.c_str(), "9", &hints, list.Receive()) != 0 || !list) return false;
    const Owned<SocketTraits> probe(socket(list.Get()->ai_family, SOCK_DGRAM, 0));
    return probe &&
           connect(probe.Get(), list.Get()->ai_addr, static_cast<int>(list.Get()->ai_addrlen)) == 0;
}

bool HasAddress(const std::string& host) { return !AddressOf(host, AF_UNSPEC).empty(); }

}  // namespace vndiscover::host
