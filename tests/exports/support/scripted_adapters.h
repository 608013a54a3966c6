// Adapter lists that no test network has, in place of the system's.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "exports/support/module.h"

#include <iphlpapi.h>

namespace vndiscover {

// Replaces the system's two listing functions for one module; one object at a time. Like the
// system's, they refuse a buffer that is too small and return the size that they need.
class ScriptedAdapters {
  public:
    explicit ScriptedAdapters(const Module& module) : lookup_(module) {
        self_ = this;
        lookup_.Set("GetAdaptersInfo", [](IP_ADAPTER_INFO* list, ULONG* size) {
            return self_->Fill(self_->ipv4_, list, size);
        });
        lookup_.Set("GetAdaptersAddresses",
                    [](ULONG, ULONG, void*, IP_ADAPTER_ADDRESSES* list, ULONG* size) {
                        EXPECT_GE(HeapSize(GetProcessHeap(), 0, list), *size);
                        return self_->Fill(self_->ipv6_, list, size);
                    });
    }
    // As the system may write them.
    void WriteAddressesInUpperCase() {
        lookup_.Set("inet_ntop", [](INT family, const void* address, PSTR text, size_t size) {
            const PCSTR written = inet_ntop(family, address, text, size);
            std::transform(text, text + strlen(text), text, toupper);
            return written;
        });
    }

    // Appends an adapter. Entries are pairs of address and mask.
    void AddIPv4(const std::string& description,
                 const std::vector<std::pair<std::string, std::string>>& entries) {
        IP_ADAPTER_INFO& adapter = Append(ipv4_, ipv4_.empty() ? nullptr : &ipv4_.back());
        std::strncpy(adapter.Description, description.c_str(), sizeof adapter.Description - 1);
        IP_ADDR_STRING* entry = nullptr;
        for (const auto& [address, mask] : entries) {
            entry = entry ? &Append(ipv4Entries_, entry) : &adapter.IpAddressList;
            std::strncpy(entry->IpAddress.String, address.c_str(), 15);
            std::strncpy(entry->IpMask.String, mask.c_str(), 15);
        }
    }
    void AddIPv6(const std::wstring& name, const std::vector<std::string>& addresses,
                 bool isUp = true) {
        IP_ADAPTER_ADDRESSES& adapter = Append(ipv6_, ipv6_.empty() ? nullptr : &ipv6_.back());
        adapter.FriendlyName = names_.emplace_back(name).data();
        adapter.IfType = IF_TYPE_ETHERNET_CSMACD;
        adapter.OperStatus = isUp ? IfOperStatusUp : IfOperStatusDown;
        IP_ADAPTER_UNICAST_ADDRESS* entry = nullptr;
        for (const std::string& text : addresses) {
            entry = &Append(ipv6Entries_, entry);
            if (!adapter.FirstUnicastAddress) adapter.FirstUnicastAddress = entry;
            sockaddr_in6& address = ipv6Addresses_.emplace_back();
            address.sin6_family = AF_INET6;
            inet_pton(AF_INET6, text.c_str(), &address.sin6_addr);
            entry->Address = {reinterpret_cast<sockaddr*>(&address), sizeof address};
        }
    }

    ULONG needs = 0;           // bytes; 0: the size of the list's records
    ULONG alwaysNeeds = 0;     // bytes more than the buffer has
    ULONG error = 0;           // instead of a list
    std::vector<ULONG> sizes;  // of the module's buffers

  private:
    template <class Record>
    static Record& Append(std::deque<Record>& records, Record* last) {
        Record& record = records.emplace_back();
        std::memset(&record, 0, sizeof record);
        if (last) last->Next = &record;
        return record;
    }
    // The first record is copied to the module's buffer and links to the others, which stay here.
    template <class Record>
    ULONG Fill(const std::deque<Record>& records, void* list, ULONG* size) {
        const ULONG offered = *size;
        sizes.push_back(offered);
        if (error != 0) return error;
        *size = needs ? needs : static_cast<ULONG>(records.size() * sizeof(Record));
        if (alwaysNeeds != 0) *size = offered + alwaysNeeds;
        if (*size == 0) return ERROR_NO_DATA;
        if (offered < *size) return ERROR_BUFFER_OVERFLOW;
        std::memcpy(list, &records.front(), sizeof(Record));
        return ERROR_SUCCESS;
    }
    static inline ScriptedAdapters* self_;
    std::deque<IP_ADAPTER_INFO> ipv4_;
    std::deque<IP_ADDR_STRING> ipv4Entries_;  // except each adapter's first
    std::deque<IP_ADAPTER_ADDRESSES> ipv6_;
    std::deque<IP_ADAPTER_UNICAST_ADDRESS> ipv6Entries_;
    std::deque<sockaddr_in6> ipv6Addresses_;
    std::deque<std::wstring> names_;
    LookupPatch lookup_;
};

}  // namespace vndiscover
