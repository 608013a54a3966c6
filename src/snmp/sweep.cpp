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

SweepRequest SnmpSweepRequest(BYTE useIPv6, const void* message, int32_t length) {
    SweepRequest request = {};
    request.family = useIPv6 ? AF_INET6 : AF_INET;
    request.target = useIPv6 ? kIPv6AllNodes : kIPv4Broadcast;
    request.port = kSnmpPort;
    request.data = message;
    request.length = length;
    request.protocol = IPPROTO_UDP;
    request.socketTimeoutMs = kSocketTimeoutMs;
    return request;
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
