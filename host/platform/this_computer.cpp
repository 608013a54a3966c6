#include "platform/this_computer.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <windows.h>

#include <iphlpapi.h>

#include <memory>

#include "platform/owned.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/ip_address.h"
#include "values/ranges.h"

namespace vndiscover::host {

namespace {

// The module's buffer for the list of IPv4 adapters: about 32 records.
constexpr ULONG kModuleListBytes = 22528;
constexpr ULONG kFirstListBytes = 15000;
constexpr int kListAttempts = 3;
constexpr char kLogKey[] = "Software\\Varnell Osk\\VnInst";

FARPROC FindInIpHelper(const char* name) {
    static const std::wstring path = SystemFile(L"IPHLPAPI.DLL");
    static const OwnedModule helper(path.empty() ? nullptr : LoadLibraryW(path.c_str()));
    return helper ? GetProcAddress(helper.Get(), name) : nullptr;
}
// With the type of the declaration, but without linking to the function.
#define FIND(function) \
    reinterpret_cast<decltype(&(function))>(reinterpret_cast<void*>(FindInIpHelper(#function)))

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

List<IP_ADAPTER_INFO> ReadInfo() {
    const auto getInfo = FIND(GetAdaptersInfo);
    if (!getInfo) return {};
    return ReadList<IP_ADAPTER_INFO>(kModuleListBytes, getInfo);
}

List<IP_ADAPTER_ADDRESSES> ReadAddresses(ULONG family, ULONG flags) {
    const auto getAddresses = FIND(GetAdaptersAddresses);
    if (!getAddresses) return {};
    return ReadList<IP_ADAPTER_ADDRESSES>(
        kFirstListBytes, [&](IP_ADAPTER_ADDRESSES* record, ULONG* size) {
            return getAddresses(family, flags, nullptr, record, size);
        });
}

List<IP_ADAPTER_ADDRESSES> ReadDetails() {
    return ReadAddresses(
        AF_UNSPEC, GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER);
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

template <class Address>  // of IPv4 or IPv6, in network order
std::string AddressText(const Address& address) {
    return IpText({reinterpret_cast<const char*>(&address), sizeof address});
}

void AddLinkLocal(AdapterList& list, const IP_ADAPTER_ADDRESSES& adapter) {
    for (const auto* entry = adapter.FirstUnicastAddress; entry; entry = entry->Next) {
        if (!entry->Address.lpSockaddr ||
            entry->Address.iSockaddrLength < static_cast<int>(sizeof(sockaddr_in6)))
            continue;
        sockaddr_in6 address;
        memcpy(&address, entry->Address.lpSockaddr, sizeof address);
        AdapterAddress row;
        row.address = AddressText(address.sin6_addr);
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
    const auto getBestRoute = FIND(GetBestRoute);
    MIB_IPFORWARDROW row = {};
    if (!getBestRoute || getBestRoute(inet_addr(ipv4Address), 0, &row) != NO_ERROR) return route;
    const auto infos = ReadInfo();
    for (const auto* info = infos.First(); info; info = info->Next) {
        if (info->Index != row.dwForwardIfIndex) continue;
        const AdapterAddress first = RowOf(*info, info->IpAddressList, ReadDetails());
        route.adapter = first.adapter;
        route.source = first.address;
    }
    // The route may use an adapter that is not in the list, such as the loopback.
    if (route.source.empty()) route.source = "interface " + std::to_string(row.dwForwardIfIndex);
    const std::string gateway = AddressText(row.dwForwardNextHop);
    // For a route on the link this is the adapter's own address, or none.
    if (row.dwForwardNextHop != 0 && gateway != route.source) route.gateway = gateway;
    return route;
}

using OwnedSocket = Owned<ClosedBy<SOCKET, closesocket, INVALID_SOCKET>>;
using OwnedAddresses = Owned<ClosedBy<addrinfo*, freeaddrinfo>>;

// Null if there are none.
OwnedAddresses AddressesOf(const std::string& host, int family, int flags = 0) {
    // The system would complete a mistyped address such as "10.77.3" to 10.77.0.3.
    if (host.find_first_not_of("0123456789.") == std::string::npos && !ParseIpAddress(host))
        return OwnedAddresses();
    static WSADATA data;
    [[maybe_unused]] static const int started = WSAStartup(MAKEWORD(2, 2), &data);
    addrinfo hints = {};
    hints.ai_family = family;
    hints.ai_flags = flags;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* list = nullptr;
    // Not port 161, which may be what is blocked.
    const int error = getaddrinfo(ToAnsi(host).c_str(), "9", &hints, &list);
    return OwnedAddresses(error == 0 ? list : nullptr);
}

}  // namespace

AdapterList IPv4Adapters() {
    const auto infos = ReadInfo();
    const auto details = ReadDetails();
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

bool IsOnANetwork() {
    return AnyOf(IPv4Adapters().addresses, [](const AdapterAddress& row) {
        return row.isUp != false && row.address != "0.0.0.0" && row.address.rfind("127.", 0) != 0;
    });
}

AdapterList IPv6Adapters() {
    // With the module's flag, because of which the system may refuse the list.
    const auto adapters = ReadAddresses(AF_INET6, GAA_FLAG_INCLUDE_PREFIX);
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

std::string NumericHost(const std::string& host) {
    if (ParseIpAddress(host)) return host;
    for (const int family : {AF_INET, AF_INET6}) {
        const OwnedAddresses list = AddressesOf(host, family);
        char text[NI_MAXHOST] = {};
        if (list && getnameinfo(list.Get()->ai_addr, static_cast<socklen_t>(list.Get()->ai_addrlen),
                                text, sizeof text, nullptr, 0, NI_NUMERICHOST) == 0)
            return text;
    }
    return host;
}

bool HasRoute(const std::string& address) {
    const OwnedAddresses list = AddressesOf(address, AF_UNSPEC, AI_NUMERICHOST);
    if (!list) return false;
    const OwnedSocket probe(socket(list.Get()->ai_family, SOCK_DGRAM, 0));
    return probe &&
           connect(probe.Get(), list.Get()->ai_addr, static_cast<int>(list.Get()->ai_addrlen)) == 0;
}

bool HasAddress(const std::string& host) { return static_cast<bool>(AddressesOf(host, AF_UNSPEC)); }

}  // namespace vndiscover::host
