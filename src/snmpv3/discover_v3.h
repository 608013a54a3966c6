// The SNMPv3 sweep: an engine discovery to all devices, then one request to each that reports.
#pragma once

#include <cstdint>

#include "snmp/vx_snmp_mgr.h"
#include "snmpv3/codec/security_settings.h"

namespace vndiscover {

// Always 0. Kept: there is no final (0, 0) message and no result file; the sweep is over when this
// returns. A null or "" oid means the one that jsonRequest names, or the default. jsonRequest is
// UTF-8. If it has kJsonRequestSize bytes or more, or if the OID text or the user name is too long,
// nothing is sent. During a sweep of the manager a further call does nothing.
int32_t DiscoverV3(VxSnmpMgr& manager, const SweepSettings& settings, const char* oid,
                   const char* jsonRequest, const SecuritySettings& security);

}  // namespace vndiscover
