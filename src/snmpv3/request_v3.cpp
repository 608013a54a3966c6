#include "snmpv3/request_v3.h"

#include <utility>

#include "snmp/codec/asn.h"
#include "snmp/exchange.h"
#include "support/debug_log.h"

namespace vndiscover {

std::unique_ptr<VxSNMPv3> MakeRequestV3(const UserV3& user, const EngineValues& engine,
                                        uint8_t pduType, const char* oid) {
    auto request = std::make_unique<VxSNMPv3>(&user.keys);
    user.security.ApplyTo(*request);
    request->SetEngine(engine.id, engine.boots, engine.time);
    request->SetMsgMaxSize(engine.msgMaxSize);
    request->SetPduType(pduType);
    if (!request->SetOid(oid)) return nullptr;
    return request;
}

int32_t GetInformationV3(VxSnmpMgr& manager, VxSNMPv3* request, const char* address,
                         const char* bindAddress, int32_t attempts) {
    DebugLogA("SNMP::GetInformationV3 - [%s]\n", address);
    SCKRAW& socket = manager.Socket();
    if (!request) return 0;
    OwnedSocket opened = OpenFor(socket, address, bindAddress);
    const ByteBuffer& message = request->Encode();
    ExchangeResult result =
        RunExchange(socket, std::move(opened),
                    {address, message.data, static_cast<int32_t>(message.length), attempts,
                     OnSilence::kGiveUp});
    if (result.outcome != 1) return result.outcome;
    // Kept: an answer that does not decode counts as one without a value.
    request->Decode(result.datagram.data, result.datagram.length);
    return result.datagram.length;
}

std::string ValueTextOf(const VarBindRecord* binding) {
    std::string text;
    if (!binding) return text;
    try {
        VarBindValueToText(*binding, text);
    } catch (const AsnDecodeError&) {
        text.clear();
    }
    return text;
}

}  // namespace vndiscover
