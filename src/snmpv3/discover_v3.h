// The SNMPv3 sweep: an engine discovery probe to everybody, then one request to each that reports.
#pragma once

#include <cstdint>

#include "snmp/vx_snmp_mgr.h"
#include "snmpv3/codec/security_settings.h"

namespace vndiscover {

// Always 0. Kept: no final (0, 0) message and no result file of its own; the sweep is over when
// this returns. oid null or "": the one that jsonRequest names, or the default. jsonRequest is
// UTF-8. One of kJsonRequestSize bytes or more, an OID text or a user name that is too long:
// nothing is sent. Called while the manager sweeps, it does nothing.
int32_t DiscoverV3(VxSnmpMgr& manager, const SweepSettings& settings, const char* oid,
                   const char* jsonRequest, const SecuritySettings& security);

}  // namespace vndiscover
