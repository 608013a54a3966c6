#include "snmpv3/request_v3.h"

#include "snmp/codec/asn.h"
#include "support/debug_log.h"

namespace vndiscover {
std::unique_ptr<VxSNMPv3> MakeRequestV3(const SecuritySettings& security,
                                        const EngineValues& engine, uint8_t pduType,
                                        const char* oid) {
    auto request = std::make_unique<VxSNMPv3>(&security.Keys());
    security.ApplyTo(*request);
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
    Exchange exchange = {address,  message.data, static_cast<int32_t>(message.length),
                         attempts, true,         false};
    Datagram answer;
    const int32_t outcome = RunExchange(socket, opened, exchange, answer);
    if (outcome != 1) return outcome;
    // Kept: an answer that does not decode counts as one without a value.
    request->Decode(answer.data, answer.length);
    return answer.length;
}

const VarBindRecord* FirstBinding(const VxSNMPv3& answer) {
    const VarBindList& list = answer.Bindings();
    return list.count > 0 ? &list.bindings[0] : nullptr;
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
