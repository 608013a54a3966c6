#include "exports/support/scripted_adapters.h"

#include <algorithm>
#include <cstring>

#include "support/win.h"

#include <iphlpapi.h>

namespace vndiscover {
namespace {

ScriptedAdapters* g_adapters;

ULONG Refuse(ULONG offered, ULONG needed, ULONG* size) {
    g_adapters->sizes.push_back(offered);
    if (g_adapters->error != 0) return g_adapters->error;
    if (needed == 0 && g_adapters->alwaysNeeds == 0) return ERROR_NO_DATA;
    if (g_adapters->alwaysNeeds != 0) needed = offered + g_adapters->alwaysNeeds;
    *size = needed;
    return offered < needed ? ERROR_BUFFER_OVERFLOW : ERROR_SUCCESS;
}

// Takes pieces of the caller's buffer, one behind the other, each zeroed.
class Pieces {
  public:
    explicit Pieces(void* buffer) : next_(static_cast<uint8_t*>(buffer)) {}
    template <class Piece>
    Piece* Take(size_t bytes = sizeof(Piece)) {
        uint8_t* taken = next_;
        std::memset(taken, 0, bytes);
        next_ += (bytes + 7) / 8 * 8;
        return reinterpret_cast<Piece*>(taken);
    }

  private:
    uint8_t* next_;
};

void Fill(IP_ADDR_STRING& entry, const IPv4Entry& scripted) {
    std::strncpy(entry.IpAddress.String, scripted.address.c_str(), 15);
    std::strncpy(entry.IpMask.String, scripted.mask.c_str(), 15);
}

ULONG WINAPI ListIPv4(IP_ADAPTER_INFO* list, ULONG* size) {
    size_t needed = 0;
    for (const ScriptedIPv4Adapter& adapter : g_adapters->ipv4) {
        needed += sizeof(IP_ADAPTER_INFO) + (adapter.entries.size() - 1) * sizeof(IP_ADDR_STRING);
    }
    if (const ULONG refused = Refuse(*size, static_cast<ULONG>(needed), size)) return refused;
    Pieces pieces(list);
    IP_ADAPTER_INFO* last = nullptr;
    for (const ScriptedIPv4Adapter& scripted : g_adapters->ipv4) {
        auto* adapter = pieces.Take<IP_ADAPTER_INFO>();
        if (last) last->Next = adapter;
        last = adapter;
        std::strncpy(adapter->Description, scripted.description.c_str(), 131);
        IP_ADDR_STRING* entry = &adapter->IpAddressList;
        for (size_t i = 0; i < scripted.entries.size(); ++i) {
            if (i != 0) entry = entry->Next = pieces.Take<IP_ADDR_STRING>();
            Fill(*entry, scripted.entries[i]);
        }
    }
    return ERROR_SUCCESS;
}

void AddAddress(Pieces& pieces, IP_ADAPTER_ADDRESSES& adapter, const std::string& text) {
    auto* unicast = pieces.Take<IP_ADAPTER_UNICAST_ADDRESS>();
    auto* address = pieces.Take<sockaddr_in6>();
    address->sin6_family = AF_INET6;
    inet_pton(AF_INET6, text.c_str(), &address->sin6_addr);
    unicast->Address.lpSockaddr = reinterpret_cast<sockaddr*>(address);
    unicast->Address.iSockaddrLength = sizeof *address;
    auto** end = &adapter.FirstUnicastAddress;
    while (*end) end = &(*end)->Next;
    *end = unicast;
}

ULONG WINAPI ListIPv6(ULONG, ULONG, void*, IP_ADAPTER_ADDRESSES* list, ULONG* size) {
    size_t needed = 0;
    for (const ScriptedIPv6Adapter& adapter : g_adapters->ipv6) {
        needed += sizeof(IP_ADAPTER_ADDRESSES) + adapter.name.size() * 2 + 16 +
                  adapter.addresses.size() *
                      (sizeof(IP_ADAPTER_UNICAST_ADDRESS) + sizeof(sockaddr_in6) + 16);
    }
    if (const ULONG refused = Refuse(*size, static_cast<ULONG>(needed), size)) return refused;
    Pieces pieces(list);
    IP_ADAPTER_ADDRESSES* last = nullptr;
    for (const ScriptedIPv6Adapter& scripted : g_adapters->ipv6) {
        auto* adapter = pieces.Take<IP_ADAPTER_ADDRESSES>();
        if (last) last->Next = adapter;
        last = adapter;
        const size_t nameBytes = (scripted.name.size() + 1) * sizeof(wchar_t);
        adapter->FriendlyName = pieces.Take<wchar_t>(nameBytes);
        std::memcpy(adapter->FriendlyName, scripted.name.c_str(), nameBytes);
        adapter->IfType = IF_TYPE_ETHERNET_CSMACD;
        adapter->OperStatus = scripted.isUp ? IfOperStatusUp : IfOperStatusDown;
        for (const std::string& text : scripted.addresses) AddAddress(pieces, *adapter, text);
    }
    return ERROR_SUCCESS;
}

PCSTR WSAAPI UpperCaseText(INT family, const void* address, PSTR text, size_t size) {
    const PCSTR written = inet_ntop(family, address, text, size);
    std::transform(text, text + strlen(text), text, toupper);
    return written;
}

FARPROC WINAPI Lookup(HMODULE library, const char* name) {
    const auto as = [](auto function) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
    };
    if (std::strcmp(name, "GetAdaptersInfo") == 0) return as(ListIPv4);
    if (std::strcmp(name, "GetAdaptersAddresses") == 0) return as(ListIPv6);
    if (g_adapters->addressesInUpperCase && std::strcmp(name, "inet_ntop") == 0) {
        return as(UpperCaseText);
    }
    return GetProcAddress(library, name);
}

HMODULE WINAPI Load(const wchar_t* path) {
    g_adapters->loaded.push_back(path);
    return LoadLibraryW(path);
}

}  // namespace

ScriptedAdapters::ScriptedAdapters(const Module& module)
    : lookup_(module.Handle(), "GetProcAddress", Lookup),
      load_(module.Handle(), "LoadLibraryW", Load) {
    g_adapters = this;
}

}  // namespace vndiscover
