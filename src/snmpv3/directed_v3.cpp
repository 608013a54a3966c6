#include "snmpv3/snmp_v3.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "snmp/bind_address.h"
#include "snmp/codec/asn.h"
#include "snmp/exchange.h"
#include "snmp/vx_snmp_mgr.h"
#include "snmpv3/codec/vx_snmpv3.h"
#include "snmpv3/request_v3.h"
#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

struct DirectedAnswer {
    std::unique_ptr<VxSnmpMgr> manager;
    std::unique_ptr<VxSNMPv3> message;  // empty if no answer came
    int32_t reportLength = 0;           // answer to the engine discovery; -1 if it was not sent

    const VarBindRecord* Binding() const { return message ? message->FirstBinding() : nullptr; }
};

// Discovers the engine, then asks for the OID. Empty if nothing can be sent; the manager is made
// all the same.
std::optional<DirectedAnswer> AskDevice(const char* host, const char* oid, uint8_t pduType,
                                        const UserV3& user) {
    LoadBindAddresses(host, false);
    auto manager = std::make_unique<VxSnmpMgr>();
    if (!host || !user.security.HasUsableName()) return std::nullopt;
    char szBindIp[kBindAddressSize];
    if (ChooseBindAddress(host, szBindIp)) {
        VxSNMPv3 trial;
        // A failed send counts as no answer.
        if (GetInformationV3(*manager, &trial, host, szBindIp, kOneAttempt) <= 0) {
            UseSecondRow(szBindIp);
        }
    }
    DebugLogA("szBindIp [%s]\n", szBindIp);
    VxSNMPv3 discovery;
    const int32_t reportLength =
        GetInformationV3(*manager, &discovery, host, szBindIp, kRequestAttempts);
    std::unique_ptr<VxSNMPv3> request;
    if (reportLength > 0) {  // Kept: without a report, no request is sent.
        const EngineValues engine = {discovery.EngineId(), discovery.EngineBoots(),
                                     discovery.EngineTime()};
        request = MakeRequestV3(user, engine, pduType, oid);
        if (GetInformationV3(*manager, request.get(), host, szBindIp, kOneAttempt) <= 0) {
            request.reset();
        }
    }
    return DirectedAnswer{std::move(manager), std::move(request), reportLength};
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
    PasswordKeys keys;
    const auto answer = AskDevice(host, oid, kPduGetRequest, {security, keys});
    if (!answer) return 0;
    const VarBindRecord* binding = answer->Binding();
    const std::string strValue = ValueTextOf(binding);
    DebugLogA("strValue [%s]", strValue.c_str());
    if (binding && valueType) *valueType = binding->valueTag;
    if (strValue.empty()) return 0;
    // Cut if it does not fit: the device, not the caller, chooses its length.
    if (out.text && out.size > 0) {
        CopyText(out.text, static_cast<size_t>(out.size), strValue.c_str());
    }
    return answer->reportLength;  // Kept: the report's length, not the value's.
}

int32_t RequestNextV3(const char* host, const char* oid, VnResponseRecord* record,
                      const SecuritySettings& security) {
    PasswordKeys keys;
    const auto answer = AskDevice(host, oid, kPduGetNextRequest, {security, keys});
    if (!answer || !record) return 0;
    CopyText(record->address, host);
    if (const VarBindRecord* binding = answer->Binding()) FillRecord(*binding, *record);
    return answer->reportLength;
}

}  // namespace vndiscover
