#include "snmpv3/directed_v3.h"

#include <memory>
#include <string>

#include "snmp/bind_address.h"
#include "snmpv3/request_v3.h"
#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

struct DirectedAnswer {
    std::unique_ptr<VxSnmpMgr> manager;
    std::unique_ptr<VxSNMPv3> message;  // empty if no answer came
    int32_t reportLength = 0;           // answer to the engine discovery; -1 if it was not sent

    const VarBindRecord* Binding() const { return message ? FirstBinding(*message) : nullptr; }
};

// Discovers the engine, then asks for the OID.
void AskDevice(const char* host, const char* oid, uint8_t pduType, const SecuritySettings& security,
               DirectedAnswer& answer) {
    VxSnmpMgr& manager = *answer.manager;
    char szBindIp[kBindAddressSize];
    if (ChooseBindAddress(host, szBindIp)) {
        VxSNMPv3 trial;
        // A failed send counts as no answer.
        if (GetInformationV3(manager, &trial, host, szBindIp, kOneAttempt) <= 0) {
            UseSecondRow(szBindIp);
        }
    }
    DebugLogA("szBindIp [%s]\n", szBindIp);
    VxSNMPv3 discovery;
    answer.reportLength = GetInformationV3(manager, &discovery, host, szBindIp, kRequestAttempts);
    if (answer.reportLength <= 0) return;  // Kept: without a report, no request is sent.

    const EngineValues engine = {discovery.EngineId(), discovery.EngineBoots(),
                                 discovery.EngineTime()};
    auto request = MakeRequestV3(security, engine, pduType, oid);
    if (GetInformationV3(manager, request.get(), host, szBindIp, kOneAttempt) > 0) {
        answer.message = std::move(request);
    }
}

// Creates the manager, even for a call that has no host.
DirectedAnswer StartRequest(const char* host) {
    LoadBindAddresses(host, false);
    DirectedAnswer answer;
    answer.manager = std::make_unique<VxSnmpMgr>();
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

int32_t RequestTextV3(const char* host, const char* oid, const TextBuffer& out, uint32_t* valueType,
                      const SecuritySettings& security) {
    DirectedAnswer answer = StartRequest(host);
    if (!host || !security.HasUsableName()) return 0;
    AskDevice(host, oid, kPduGetRequest, security, answer);
    const VarBindRecord* binding = answer.Binding();
    const std::string strValue = ValueTextOf(binding);
    DebugLogA("strValue [%s]", strValue.c_str());
    if (binding && valueType) *valueType = binding->valueTag;
    if (strValue.empty()) return 0;
    // Cut if it does not fit: the device, not the caller, chooses its length.
    if (out.text && out.size > 0) {
        CopyText(out.text, static_cast<size_t>(out.size), strValue.c_str());
    }
    return answer.reportLength;  // Kept: the report's length, not the value's.
}

int32_t RequestNextV3(const char* host, const char* oid, VnResponseRecord* record,
                      const SecuritySettings& security) {
    DirectedAnswer answer = StartRequest(host);
    if (!host || !security.HasUsableName()) return 0;
    AskDevice(host, oid, kPduGetNextRequest, security, answer);
    if (!record) return 0;
    CopyText(record->address, host);
    if (const VarBindRecord* binding = answer.Binding()) FillRecord(*binding, *record);
    return answer.reportLength;
}

}  // namespace vndiscover
