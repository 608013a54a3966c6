// One SNMPv3 exchange with one device, and the parts of its requests.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "snmp/codec/byte_buffer.h"
#include "snmp/codec/var_bind.h"
#include "snmp/vx_snmp_mgr.h"
#include "snmpv3/codec/security_settings.h"
#include "snmpv3/codec/vx_snmpv3.h"

namespace vndiscover {

// The authoritative engine's values from a device's report, and the msgMaxSize for the request.
struct EngineValues {
    const ByteBuffer& id;
    int32_t boots;
    int32_t time;
    uint32_t msgMaxSize = kDefaultMsgMaxSize;
};

// The caller's security and the keys of its passwords, for all messages of one call.
struct UserV3 {
    const SecuritySettings& security;
    PasswordKeys& keys;
};

// A request for one OID; null if the OID cannot be encoded.
std::unique_ptr<VxSNMPv3> MakeRequestV3(const UserV3& user, const EngineValues& engine,
                                        uint8_t pduType, const char* oid);

/**
 * Encodes and sends `request`, and decodes the answer into it. The first time-out ends the
 * exchange, whatever `attempts` says.
 * @param request      If null, nothing is sent and 0 is returned.
 * @param bindAddress  Local address; null or "" means any.
 * @return The length of the answer datagram; 0: no answer; -1: the send failed.
 */
int32_t GetInformationV3(VxSnmpMgr& manager, VxSNMPv3* request, const char* address,
                         const char* bindAddress, int32_t attempts);

// A binding's value as text; "" for null, for types other than INTEGER and OCTET STRING, and for a
// malformed INTEGER.
std::string ValueTextOf(const VarBindRecord* binding);

}  // namespace vndiscover
