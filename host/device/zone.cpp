#include "device/zone.h"

#include <vndiscover.h>

#include <map>
#include <mutex>

#include "platform/this_computer.h"
#include "values/ip_address.h"

namespace vndiscover::host {
namespace {

constexpr unsigned kPingMs = 1000;

// Of this process; devices of a scan are asked again and again.
std::mutex g_mutex;
std::map<std::string, std::string> g_known;

bool NeedsZone(const std::string& host) {
    const auto address = ParseIpAddress(host);
    return address && !address->IsIPv4() && host.find('%') == std::string::npos &&
           address->bytes[0] == '\xFE' && (address->bytes[1] & 0xC0) == 0x80;
}

}  // namespace

std::string HostWithZone(const std::string& host,
                         const std::function<bool(const std::string& host)>& asks) {
    if (!NeedsZone(host)) return host;
    {
        const std::lock_guard<std::mutex> lock(g_mutex);
        if (const auto known = g_known.find(host); known != g_known.end()) return known->second;
    }
    std::vector<std::string> hosts;
    for (const AdapterAddress& row : ThisComputer().IPv6().addresses) {
        if (row.isUp == true) hosts.push_back(host + "%" + std::to_string(row.zone));
    }
    if (hosts.size() < 2) return host;
    const auto isThere = [](const std::string& one) { return VxPing(one.c_str(), kPingMs) != 0; };
    for (const auto& answers : {std::function<bool(const std::string&)>(isThere), asks}) {
        for (const std::string& one : hosts) {
            if (!answers(one)) continue;
            const std::lock_guard<std::mutex> lock(g_mutex);
            return g_known[host] = one;
        }
    }
    return host;
}

}  // namespace vndiscover::host
