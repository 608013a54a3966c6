// What the exports do over SNMPv3: a sweep is an engine discovery to all devices and one request to
// each that reports; a directed request discovers the device's engine again.
#pragma once

#include <cstdint>

#include "snmp/directed_request.h"
#include "snmp/vx_snmp_mgr.h"
#include "snmpv3/codec/security_settings.h"
#include "vndiscover.h"

namespace vndiscover {

// Always 0. Kept: there is no final (0, 0) message and no result file; the sweep is over when this
// returns. A null or "" oid means the one that jsonRequest names, or the default. jsonRequest is
// UTF-8. If it has kJsonRequestSize bytes or more, or if the OID text or the user name is too long,
// nothing is sent. During a sweep of the manager a further call does nothing.
int32_t DiscoverV3(VxSnmpMgr& manager, const SweepSettings& settings, const char* oid,
                   const char* jsonRequest, const SecuritySettings& security);

// Arguments and results as in the public header. host may be null.
int32_t RequestTextV3(const char* host, const char* oid, const TextBuffer& out, uint32_t* valueType,
                      const SecuritySettings& security);
int32_t RequestNextV3(const char* host, const char* oid, VnResponseRecord* record,
                      const SecuritySettings& security);

}  // namespace vndiscover
