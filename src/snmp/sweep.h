// What the sweeps of all SNMP versions share.
#pragma once

#include <cstdint>
#include <string>

#include "net/adapter_sweep.h"
#include "snmp/exchange.h"

namespace vndiscover {

constexpr CollectionLimits kSweepLimits = {kReceiveWaitMs, 60000, false};

// The host's arguments of a sweep.
struct SweepSettings {
    HWND hWnd;  // may be null
    UINT uMsg;
    UINT timeout;
    BYTE useIPv6;
    const wchar_t* resultPath;  // null or "": no result file
};

// The message as a broadcast or multicast to the SNMP port.
SweepRequest SnmpSweepRequest(BYTE useIPv6, const void* message, int32_t length);

// False if the request is too long to be used. Null is not.
bool FitsJsonRequest(const char* jsonRequest);

// The OID to request: `oid`, otherwise the one that jsonRequest names, otherwise the default; null
// and "" name none. False if it has kOidTextSize bytes or more: a truncated OID would request
// another variable.
bool ChooseDiscoveryOid(const char* oid, const char* jsonRequest, std::string& szDisOid);

}  // namespace vndiscover
