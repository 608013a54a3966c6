// Adapter lists that no test network has, in front of the system's own.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "exports/support/module.h"

#include <iphlpapi.h>

namespace vndiscover {

// What the system's two listing functions say, for one module; one object at a time. Like the
// system's own they refuse a buffer that is too small and tell the size that they need.
class ScriptedAdapters {
  public:
    explicit ScriptedAdapters(const Module& module);

    // Behind the adapters that were added before. Entries are pairs of address and mask.
    void AddIPv4(const std::string& description,
                 const std::vector<std::pair<std::string, std::string>>& entries);
    void AddIPv6(const std::wstring& name, const std::vector<std::string>& addresses,
                 bool isUp = true);

    ULONG needs = 0;                    // bytes; 0: as many as the records of the list have
    ULONG alwaysNeeds = 0;              // bytes more than any buffer has
    ULONG error = 0;                    // instead of a list
    bool addressesInUpperCase = false;  // from inet_ntop
    std::vector<ULONG> sizes;           // of the buffers that the module offered

    // The first record goes to the module's buffer and leads to the others, which stay here.
    std::deque<IP_ADAPTER_INFO> ipv4;
    std::deque<IP_ADDR_STRING> ipv4Entries;  // but each adapter's first
    std::deque<IP_ADAPTER_ADDRESSES> ipv6;
    std::deque<IP_ADAPTER_UNICAST_ADDRESS> ipv6Entries;
    std::deque<sockaddr_in6> ipv6Addresses;
    std::deque<std::wstring> ipv6Names;

  private:
    ImportPatch lookup_;
};

}  // namespace vndiscover
