#include "device/sweeps.h"

#include <vndiscover.h>

#include "model/asking/json_request.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

void RunV3(HWND window, UINT message, const SnmpSweep& sweep) {
    const Security& user = *sweep.security;
    const auto run = [&](auto discover, auto... request) {
        discover(window, message, kUnusedSweepTimeoutMs, sweep.useIPv6, request...,
                 user.user.c_str(), user.useAuth, user.authPassword.Get(), user.usePriv,
                 user.privPassword.Get(), user.authLabel.c_str(), user.privLabel.c_str());
    };
    if (sweep.request.empty()) {
        run(DiscoverSnmpV3);
    } else {
        run(DiscoverV3DevicesByOIDjson, sweep.request.c_str());
    }
}

}  // namespace

SnmpSweep SweepFor(const Login& login, const Oid& oid, bool useIPv6) {
    SnmpSweep sweep;
    sweep.useIPv6 = useIPv6;
    sweep.oid = ToWide(OidToText(oid));
    sweep.community = ToWide(login.community);
    sweep.security = login.security.get();
    // SNMPv3 sweeps accept an OID only in a JSON request.
    const bool isDefault = sweep.oid == ToWide(VN_DEFAULT_DISCOVERY_OID);
    if (login.security && !isDefault) sweep.request = ToWide(RequestFor(OidToText(oid)));
    return sweep;
}

bool RunSweep(HWND window, UINT message, const SnmpSweep& sweep) {
    const ULONGLONG startMs = GetTickCount64();
    const bool hasRequest = !sweep.request.empty();
    const auto discover = hasRequest ? DiscoverDevicesByOIDjson : DiscoverDevicesByOID;
    if (sweep.security) {
        RunV3(window, message, sweep);
    } else {
        discover(window, message, kUnusedSweepTimeoutMs, sweep.useIPv6,
                 (hasRequest ? sweep.request : sweep.oid).c_str(), sweep.resultPath.c_str(),
                 sweep.community.c_str(), nullptr);
    }
    return GetTickCount64() - startMs >= kLeastSweepMs;
}

}  // namespace vndiscover::host
