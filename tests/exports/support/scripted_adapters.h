// Adapter lists that no test network has, in front of the system's own.
#pragma once

#include <string>
#include <vector>

#include "exports/support/module.h"

namespace vndiscover {

struct IPv4Entry {
    std::string address;
    std::string mask;
};
struct ScriptedIPv4Adapter {
    std::string description;
    std::vector<IPv4Entry> entries;
};
struct ScriptedIPv6Adapter {
    std::wstring name;
    std::vector<std::string> addresses;
    bool isUp = true;
};

// What the system's two listing functions say, for one module; one object at a time. Like the
// system's own they refuse a buffer that is too small and tell the size that they need.
class ScriptedAdapters {
  public:
    explicit ScriptedAdapters(const Module& module);

    std::vector<ScriptedIPv4Adapter> ipv4;
    std::vector<ScriptedIPv6Adapter> ipv6;
    unsigned long error = 0;            // instead of a list
    unsigned long alwaysNeeds = 0;      // bytes more than any buffer has
    bool addressesInUpperCase = false;  // from inet_ntop
    std::vector<unsigned long> sizes;   // of the buffers that the module offered
    std::vector<std::wstring> loaded;   // libraries, as the module named them

  private:
    ImportPatch lookup_;
    ImportPatch load_;
};

}  // namespace vndiscover
