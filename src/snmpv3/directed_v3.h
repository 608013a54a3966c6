// The directed SNMPv3 requests of the exports. Each discovers the device's engine again.
#pragma once

#include <cstdint>

#include "snmp/directed_request.h"
#include "snmpv3/codec/security_settings.h"
#include "vndiscover.h"

namespace vndiscover {

// Arguments and results as in the public header. host may be null.
int32_t RequestTextV3(const char* host, const char* oid, const TextBuffer& out, uint32_t* valueType,
                      const SecuritySettings& security);
int32_t RequestNextV3(const char* host, const char* oid, VnResponseRecord* record,
                      const SecuritySettings& security);

}  // namespace vndiscover
