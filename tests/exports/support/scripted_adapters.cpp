#include "exports/support/scripted_adapters.h"

#include <algorithm>
#include <cstring>

namespace vndiscover {
namespace {

ScriptedAdapters* g_adapters;

template <class Record>
ULONG Fill(const std::deque<Record>& records, void* list, ULONG* size) {
    const ULONG offered = *size;
    g_adapters->sizes.push_back(offered);
    if (g_adapters->error != 0) return g_adapters->error;
    *size = g_adapters->needs ? g_adapters->needs : ULONG(records.size() * sizeof(Record));
    if (g_adapters->alwaysNeeds != 0) *size = offered + g_adapters->alwaysNeeds;
    if (*size == 0) return ERROR_NO_DATA;
    if (offered < *size) return ERROR_BUFFER_OVERFLOW;
    std::memcpy(list, &records.front(), sizeof(Record));
    return ERROR_SUCCESS;
}

ULONG WINAPI ListIPv4(IP_ADAPTER_INFO* list, ULONG* size) {
    return Fill(g_adapters->ipv4, list, size);
}

ULONG WINAPI ListIPv6(ULONG, ULONG, void*, IP_ADAPTER_ADDRESSES* list, ULONG* size) {
    return Fill(g_adapters->ipv6, list, size);
}

// A new record behind `last`, which may be null.
template <class Record>
Record& Append(std::deque<Record>& records, Record* last) {
    Record& record = records.emplace_back();
    std::memset(&record, 0, sizeof record);
    if (last) last->Next = &record;
    return record;
}

template <class Record>
Record* Last(std::deque<Record>& records) {
    return records.empty() ? nullptr : &records.back();
}

PCSTR WSAAPI UpperCaseText(INT family, const void* address, PSTR text, size_t size) {
    const PCSTR written = inet_ntop(family, address, text, size);
    std::transform(text, text + strlen(text), text, toupper);
    return written;
}

FARPROC WINAPI Lookup(HMODULE library, const char* name) {
    const std::string function = name;
    const auto as = [](auto scripted) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(scripted));
    };
    if (function == "GetAdaptersInfo") return as(ListIPv4);
    if (function == "GetAdaptersAddresses") return as(ListIPv6);
    if (function == "inet_ntop" && g_adapters->addressesInUpperCase) return as(UpperCaseText);
    return GetProcAddress(library, name);
}

}  // namespace

ScriptedAdapters::ScriptedAdapters(const Module& module)
    : lookup_(module.Handle(), "GetProcAddress", Lookup) {
    g_adapters = this;
}

void ScriptedAdapters::AddIPv4(const std::string& description,
                               const std::vector<std::pair<std::string, std::string>>& entries) {
    IP_ADAPTER_INFO& adapter = Append(ipv4, Last(ipv4));
    std::strncpy(adapter.Description, description.c_str(), sizeof adapter.Description - 1);
    IP_ADDR_STRING* entry = nullptr;
    for (const auto& [address, mask] : entries) {
        entry = entry ? &Append(ipv4Entries, entry) : &adapter.IpAddressList;
        std::strncpy(entry->IpAddress.String, address.c_str(), 15);
        std::strncpy(entry->IpMask.String, mask.c_str(), 15);
    }
}

void ScriptedAdapters::AddIPv6(const std::wstring& name, const std::vector<std::string>& addresses,
                               bool isUp) {
    IP_ADAPTER_ADDRESSES& adapter = Append(ipv6, Last(ipv6));
    adapter.FriendlyName = ipv6Names.emplace_back(name).data();
    adapter.IfType = IF_TYPE_ETHERNET_CSMACD;
    adapter.OperStatus = isUp ? IfOperStatusUp : IfOperStatusDown;
    IP_ADAPTER_UNICAST_ADDRESS* entry = nullptr;
    for (const std::string& text : addresses) {
        entry = &Append(ipv6Entries, entry);
        if (!adapter.FirstUnicastAddress) adapter.FirstUnicastAddress = entry;
        sockaddr_in6& address = ipv6Addresses.emplace_back();
        address.sin6_family = AF_INET6;
        inet_pton(AF_INET6, text.c_str(), &address.sin6_addr);
        entry->Address = {reinterpret_cast<sockaddr*>(&address), sizeof address};
    }
}

}  // namespace vndiscover
