#include "net/adapter_table.h"

#include <cstring>

#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/owned.h"
#include "support/system_library.h"

#include <iphlpapi.h>

namespace vndiscover {
namespace {

constexpr ULONG kFirstListBytes = 15000;
constexpr int kListAttempts = 3;

struct HeapBlockTraits {
    using Value = void*;
    static Value Empty() noexcept { return nullptr; }
    static void Close(Value block) noexcept { HeapFree(GetProcessHeap(), 0, block); }
};
using OwnedHeapBlock = Owned<HeapBlockTraits>;

// Windows loads WinSock from its own directory only, but not IP Helper, so an ordinary import could
// pick up a file beside the host.
const wchar_t kIpHelper[] = L"IPHLPAPI.DLL";

OwnedHeapBlock ReadAdapterList(const SystemLibrary& ipHelper) {
    using GetAddresses = decltype(&GetAdaptersAddresses);
    const auto getAdaptersAddresses = ipHelper.Find<GetAddresses>("GetAdaptersAddresses");
    if (!getAdaptersAddresses) return OwnedHeapBlock();

    ULONG size = kFirstListBytes;
    for (int attempt = 0; attempt < kListAttempts; ++attempt) {
        OwnedHeapBlock list(HeapAlloc(GetProcessHeap(), 0, size));
        if (!list) return list;
        const ULONG error =
            getAdaptersAddresses(AF_INET6, GAA_FLAG_INCLUDE_PREFIX, nullptr,
                                 static_cast<IP_ADAPTER_ADDRESSES*>(list.Get()), &size);
        if (error == ERROR_SUCCESS) return list;
        if (error != ERROR_BUFFER_OVERFLOW) break;
    }
    return OwnedHeapBlock();
}

bool IsLinkLocalText(const char* text) { return std::strncmp(text, "fe80", 4) == 0; }

void LowerAscii(char* text) {
    for (; *text; ++text) {
        if (*text >= 'A' && *text <= 'Z') *text = static_cast<char>(*text - 'A' + 'a');
    }
}

}  // namespace

template <class Visit>
void AdapterTable::ForEachIPv4(Visit visit) const {
    const auto* adapter = reinterpret_cast<const IP_ADAPTER_INFO*>(adapterInfo);
    uint32_t index = 0;
    for (; adapter; adapter = adapter->Next) {
        for (const IP_ADDR_STRING* entry = &adapter->IpAddressList; entry; entry = entry->Next) {
            if (entry->IpAddress.String[0] == '\0' || entry->IpMask.String[0] == '\0') continue;
            visit(index++, *adapter, *entry);
        }
    }
}

uint32_t AdapterTable::LoadIPv4Addresses() {
    using GetInfo = decltype(&GetAdaptersInfo);
    ipv4Count = 0;
    const SystemLibrary ipHelper(kIpHelper);
    const auto getAdaptersInfo = ipHelper.Find<GetInfo>("GetAdaptersInfo");
    ULONG size = sizeof adapterInfo;
    if (!getAdaptersInfo ||
        getAdaptersInfo(reinterpret_cast<IP_ADAPTER_INFO*>(adapterInfo), &size) != ERROR_SUCCESS) {
        std::memset(adapterInfo, 0, sizeof adapterInfo);  // an empty list for later reads
        return 0;
    }
    ForEachIPv4([this](uint32_t, const IP_ADAPTER_INFO&, const IP_ADDR_STRING&) { ++ipv4Count; });
    return ipv4Count;
}

int AdapterTable::GetIPv4Address(uint32_t index, char* address, char* mask,
                                 char* description) const {
    int found = 0;
    ForEachIPv4([&](uint32_t i, const IP_ADAPTER_INFO& adapter, const IP_ADDR_STRING& entry) {
        if (i != index) return;
        if (address) CopyText(address, kAdapterTextSize, entry.IpAddress.String);
        if (mask) CopyText(mask, kAdapterTextSize, entry.IpMask.String);
        if (description) CopyText(description, kAdapterTextSize, adapter.Description);
        found = 1;
    });
    return found;
}

uint32_t AdapterTable::LoadIPv6LinkLocal() {
    ipv6Count = 0;
    const SystemLibrary ipHelper(kIpHelper);  // for as long as its list is read
    const OwnedHeapBlock list = ReadAdapterList(ipHelper);
    const auto* adapter = static_cast<const IP_ADAPTER_ADDRESSES*>(list.Get());
    for (; adapter; adapter = adapter->Next) {
        DebugLogW(L"\tFriendly name: %wS\n", adapter->FriendlyName);
        int count = 0;
        for (const IP_ADAPTER_UNICAST_ADDRESS* entry = adapter->FirstUnicastAddress; entry;
             entry = entry->Next) {
            ++count;
            if (!entry->Address.lpSockaddr ||
                entry->Address.iSockaddrLength < static_cast<int>(sizeof(sockaddr_in6))) {
                continue;
            }
            sockaddr_in6 address;
            std::memcpy(&address, entry->Address.lpSockaddr, sizeof address);
            char text[kIPv6AddressTextSize] = {};
            AddressToText(AF_INET6, &address.sin6_addr, text, sizeof text);
            LowerAscii(text);
            DebugLogA("IPADDRESS ....%s", text);
            if (!IsLinkLocalText(text)) continue;
            DebugLogA("    Link local....\n");
            if (adapter->OperStatus == IfOperStatusUp && ipv6Count < kMaxIPv6Addresses) {
                ipv6Addresses[ipv6Count++] = address;
            }
        }
        if (count != 0) {
            DebugLogA("\tNumber of Unicast Addresses: %d\n", count);
        } else {
            DebugLogA("\tNo Unicast Addresses\n");
        }
        DebugLogA("\tIfType: %ld\n", static_cast<long>(adapter->IfType));
        DebugLogA("\tOperStatus: %ld\n", static_cast<long>(adapter->OperStatus));
        DebugLogA("---------------------\n");
    }
    return ipv6Count;
}

int AdapterTable::GetIPv6Address(uint32_t index, sockaddr_in6* out) const {
    if (index < kMaxIPv6Addresses) *out = ipv6Addresses[index];
    return 0;
}

const char* AdapterTable::AddressToText(int family, const void* address, char* text, size_t size) {
    using InetNtop = PCSTR(WSAAPI*)(INT, const void*, PSTR, size_t);
    const SystemLibrary winSock(L"Ws2_32.dll");
    const auto inetNtop = winSock.Find<InetNtop>("inet_ntop");
    if (!inetNtop || !text) return nullptr;
    const char* result = inetNtop(family, address, text, size);
    DebugLogA(" pStringBuf [%s]\n", text);
    return result;
}

}  // namespace vndiscover
