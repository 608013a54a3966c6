// One SNMPv3 exchange with one device, and what its requests are made of.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "snmp/vx_snmp_mgr.h"
#include "snmpv3/codec/security_settings.h"
#include "snmpv3/codec/vx_snmpv3.h"

namespace vndiscover {

// The authoritative engine's values, as a device's report teaches them, and the largest message
// that a request is to announce.
struct EngineValues {
    const ByteBuffer& id;
    int32_t boots;
    int32_t time;
    uint32_t msgMaxSize = kDefaultMsgMaxSize;
};

// A request with the caller's security for one OID; null when the OID cannot be encoded.
std::unique_ptr<VxSNMPv3> MakeRequestV3(const SecuritySettings& security,
                                        const EngineValues& engine, uint8_t pduType,
                                        const char* oid);

/**
 * Encodes and sends `request`, and decodes the answer into it. One silent wait ends it, whatever
 * `attempts` says.
 * @param request      Null: 0.
 * @param bindAddress  Local address, null or "" for none.
 * @return The answer datagram's length, 0 for no answer, -1 when the send failed.
 */
int32_t GetInformationV3(VxSnmpMgr& manager, VxSNMPv3* request, const char* address,
                         const char* bindAddress, int32_t attempts);

// The answer's first binding, or null.
const VarBindRecord* FirstBinding(const VxSNMPv3& answer);

// The text of a binding's value; "" for null, for other types than INTEGER and OCTET STRING, and
// for an INTEGER that is none.
std::string ValueTextOf(const VarBindRecord* binding);

}  // namespace vndiscover
