#include "snmpv3/directed_v3.h"

#include <memory>
#include <string>

#include "snmp/bind_address.h"
#include "snmp/directed_request.h"
#include "snmpv3/request_v3.h"
#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr int32_t kOneAttempt = 1;

struct DirectedAnswer {
    std::unique_ptr<VxSNMPv3> message;  // empty when the device was not asked
    int32_t reportLength = 0;           // of the engine discovery; -1 when it could not be sent
};

// Discovers the engine, then asks for the OID.
DirectedAnswer AskDevice(const char* host, const char* oid, uint8_t pduType,
                         const SecuritySettings& security) {
    DirectedAnswer answer;
    LoadBindAddresses(host, false);
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!host || !security.HasUsableName()) return answer;

    char szBindIp[kBindAddressSize];
    ChooseBindAddress(host, szBindIp, [&](const char* bindAddress) {
        VxSNMPv3 trial;
        return GetInformationV3(*manager, &trial, host, bindAddress, kOneAttempt) != 0;
    });
    DebugLogA("szBindIp [%s]\n", szBindIp);
    VxSNMPv3 probe;
    answer.reportLength = GetInformationV3(*manager, &probe, host, szBindIp, kDirectedAttempts);
    // Without an engine the request would go out as one more probe.
    if (answer.reportLength <= 0 || probe.EngineId().Empty()) return answer;

    const EngineValues engine = {probe.EngineId(), probe.EngineBoots(), probe.EngineTime()};
    answer.message = MakeRequestV3(security, engine, pduType, oid);
    if (GetInformationV3(*manager, answer.message.get(), host, szBindIp, kOneAttempt) <= 0) {
        answer.message.reset();  // what it holds is the question
    }
    return answer;
}

void FillRecord(const VarBindRecord& binding, VnResponseRecord& record) {
    FillField(record.value, sizeof record.value, binding.value, binding.valueLength);
    record.valueLength = binding.valueLength;
    record.valueType = binding.valueTag;
    FillField(record.oid, sizeof record.oid, binding.name, binding.nameLength);
    record.oidLength = binding.nameLength;
}

}  // namespace

int32_t RequestTextV3(const char* host, const char* oid, char* outValue, int32_t outSize,
                      uint32_t* valueType, const SecuritySettings& security) {
    const DirectedAnswer answer = AskDevice(host, oid, kPduGetRequest, security);
    if (!answer.message) return 0;
    const VarBindRecord* binding = FirstBinding(*answer.message);
    const std::string strValue = ValueTextOf(binding);
    DebugLogA("strValue [%s]", strValue.c_str());
    if (binding && valueType) *valueType = binding->valueTag;
    if (strValue.empty()) return 0;
    CopyTextForHost(outValue, outSize, strValue.c_str());
    return answer.reportLength;  // Kept: the report's length, not the value's.
}

int32_t RequestNextV3(const char* host, const char* oid, VnResponseRecord* record,
                      const SecuritySettings& security) {
    const DirectedAnswer answer = AskDevice(host, oid, kPduGetNextRequest, security);
    if (!record || !host) return 0;
    CopyText(record->address, host);
    const VarBindRecord* binding = answer.message ? FirstBinding(*answer.message) : nullptr;
    if (binding) FillRecord(*binding, *record);
    return answer.reportLength;
}

}  // namespace vndiscover
