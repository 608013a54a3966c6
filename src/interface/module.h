// The globals that exist from process attach to process detach.
#pragma once

#include "snmp/vx_snmp_mgr.h"
#include "wsd/vx_soap_mgr.h"

namespace vndiscover {

extern HINSTANCE g_hModule;
extern VxSnmpMgr* g_snmpMgr;  // null if there was not enough memory
extern VxSoapMgr* g_soapMgr;  // likewise

}  // namespace vndiscover
