// What the sweeps of every SNMP version share.
#pragma once

#include <cstdint>
#include <string>

#include "net/adapter_sweep.h"
#include "snmp/exchange.h"

namespace vndiscover {

constexpr CollectionLimits kSweepLimits = {kReceiveWaitMs, 60000, false};

// What the host tells a sweep.
struct SweepSettings {
    HWND hWnd;  // may be null
    UINT uMsg;
    UINT timeout;
    BYTE useIPv6;
    const wchar_t* resultPath;  // null or "": no result file
};

// The request to everybody, on the SNMP port.
Probe SnmpProbe(BYTE useIPv6, const void* request, int32_t length);

// False: the request is too long to be used. Null fits.
bool FitsJsonRequest(const char* jsonRequest);

// The OID to ask for: the argument's, the one that jsonRequest names, or the default; null and ""
// name none. False: it is of kOidTextSize bytes or more. A cut one would ask for another variable.
bool ChooseDiscoveryOid(const char* oid, const char* jsonRequest, std::string& szDisOid);

}  // namespace vndiscover
