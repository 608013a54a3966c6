#include "snmp/sweep.h"

#include <cstring>

#include "interface/delivery/json_request.h"
#include "support/debug_log.h"
#include "vndiscover.h"

namespace vndiscover {
namespace {

constexpr char kIPv4Broadcast[] = "255.255.255.255";
constexpr char kIPv6AllNodes[] = "FF02:0:0:0:0:0:0:1";

}  // namespace

Probe SnmpProbe(BYTE useIPv6, const void* request, int32_t length) {
    Probe probe = {};
    probe.family = useIPv6 ? AF_INET6 : AF_INET;
    probe.target = useIPv6 ? kIPv6AllNodes : kIPv4Broadcast;
    probe.port = kSnmpPort;
    probe.data = request;
    probe.length = length;
    probe.protocol = IPPROTO_UDP;
    probe.socketTimeoutMs = kSocketTimeoutMs;
    return probe;
}

bool FitsJsonRequest(const char* jsonRequest) {
    return !jsonRequest || strnlen(jsonRequest, kJsonRequestSize) < kJsonRequestSize;
}

bool ChooseDiscoveryOid(const char* oid, const char* jsonRequest, std::string& szDisOid) {
    szDisOid = oid ? oid : "";
    if (szDisOid.empty() && jsonRequest) szDisOid = ReadDiscoveryOid(jsonRequest);
    if (szDisOid.empty()) {
        // Kept: the doubled word.
        DebugLogW(L"Should not come here set set DisOID to \".1.3.6.1.4.1.5963.43.5.1.1.1.1\"\n");
        szDisOid = VN_DEFAULT_DISCOVERY_OID;
    }
    return szDisOid.size() < kOidTextSize;
}

}  // namespace vndiscover
