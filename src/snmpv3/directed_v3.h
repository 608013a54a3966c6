// Directed SNMPv3 requests as hosts call them: each discovers the device's engine anew.
#pragma once

#include <cstdint>

#include "snmp/directed_request.h"
#include "snmpv3/codec/security_settings.h"
#include "vndiscover.h"

namespace vndiscover {

// Results and arguments as in the public header; host may be null.
int32_t RequestTextV3(const char* host, const char* oid, const TextBuffer& out, uint32_t* valueType,
                      const SecuritySettings& security);
int32_t RequestNextV3(const char* host, const char* oid, VnResponseRecord* record,
                      const SecuritySettings& security);

}  // namespace vndiscover
