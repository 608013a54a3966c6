#include <cstring>

#include "snmp/codec/snmp_message.h"
#include "snmp/vx_snmp_mgr.h"
#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/hex_text.h"

namespace vndiscover {
namespace {

constexpr ValueView kNullValue = {kTagNull, 0, nullptr};

const char* OrDefault(const char* community) {
    return community && *community ? community : kDefaultCommunity;
}

// The runtime decides about a buffer that is too small: it zeroes it and calls the
// invalid-parameter handler. A null buffer only means that the host does not want the value.
void CopyRaw(void* out, int32_t outSize, const void* bytes, size_t count) {
    if (out) memcpy_s(out, outSize > 0 ? static_cast<size_t>(outSize) : 0, bytes, count);
}

static_assert(sizeof(VnResponseRecord) == kResponseRecordSize, "hosts and the module agree");

void CopyForHost(const ResponseRecord& answer, VnResponseRecord& out) {
    out.valueType = answer.valueTag;
    out.valueLength = answer.valueLength;
    std::memcpy(out.address, answer.address, sizeof out.address);
    std::memcpy(out.value, answer.value, sizeof out.value);
    std::memcpy(out.oid, answer.name, sizeof out.oid);
    out.oidLength = answer.nameLength;
}

}  // namespace

struct VxSnmpMgr::Request {
    const OidValue& oid;
    ValueView value;
    uint8_t pduType;
    const char* community;
    const char* host;
    const char* bindAddress;
    int32_t attempts;
};

int32_t VxSnmpMgr::RunRequest(const Request& request, const CopyResult& copyResult) {
    if (!request.host || request.oid.length == 0) return 0;  // no device, or the text held no OID
    VarBindRecord binding;
    if (MakeVarBind(request.oid, request.value, binding) != 0) return 0;
    VarBindList list;
    SetVarBindList(&binding, 1, list);
    uint8_t message[kMaxMessageSize] = {};
    const int32_t length = BuildSnmpMessage(message, sizeof message, OrDefault(request.community),
                                            request.pduType, kRequestId, list);
    if (length == 0) return 0;
    OwnedSocket opened = OpenFor(request.host, request.bindAddress);
    const Exchange exchange = {request.host, message, length, request.attempts, false};
    // Kept: the first datagram on the socket is the answer, whoever sent it and whatever it says.
    return RunExchange(opened, exchange, [&](const Datagram& datagram) -> int32_t {
        ResponseRecord answer = {};
        ParseSnmpResponse(answer, datagram.data, static_cast<size_t>(datagram.length),
                          datagram.sender);
        copyResult(answer);
        return answer.valueLength;
    });
}

int32_t VxSnmpMgr::GetInformation(const char* oid, const char* host, char* outValue,
                                  int32_t outSize, uint32_t* valueType, uint32_t /*waitMs*/,
                                  int32_t attempts, const char* readCommunityText,
                                  const char* /*writeCommunity*/, const char* bindAddress) {
    DebugLogA("SNMP::GetInformation - [%s]\n", host);
    EnsureSocket();
    OidValue name;
    ParseOidText(name, oid);
    return GetEncoded(name, host, outValue, outSize, valueType, attempts, readCommunityText,
                      bindAddress);
}

int32_t VxSnmpMgr::GetInformation(const OidValue& oid, const char* host, char* outValue,
                                  int32_t outSize, uint32_t* valueType, uint32_t /*waitMs*/,
                                  int32_t attempts, const char* readCommunityText,
                                  const char* /*writeCommunity*/, const char* bindAddress) {
    DebugLogA("SNMP::GetInformation - [%s]\n", host);
    return GetEncoded(oid, host, outValue, outSize, valueType, attempts, readCommunityText,
                      bindAddress);
}

int32_t VxSnmpMgr::GetEncoded(const OidValue& oid, const char* host, char* outValue,
                              int32_t outSize, uint32_t* valueType, int32_t attempts,
                              const char* community, const char* bindAddress) {
    const Request request = {oid,  kNullValue,  kPduGetRequest, community,
                             host, bindAddress, attempts};
    return RunRequest(request, [&](const ResponseRecord& answer) {
        // The record holds a zero byte behind the value, which goes with it.
        if (answer.valueLength != 0)
            CopyRaw(outValue, outSize, answer.value, answer.valueLength + 1u);
        if (valueType) *valueType = answer.valueTag;
    });
}

int32_t VxSnmpMgr::GetInformation1(const char* oid, const char* host, VnResponseRecord* record,
                                   uint32_t /*waitMs*/, int32_t attempts,
                                   const char* readCommunityText, const char* /*writeCommunity*/,
                                   const char* bindAddress, uint8_t pduType) {
    DebugLogA("SNMP::GetInformation1 - [%s]\n", host);
    EnsureSocket();
    OidValue name;
    ParseOidText(name, oid);
    const Request request = {name, kNullValue,  pduType, readCommunityText,
                             host, bindAddress, attempts};
    return RunRequest(request, [&](const ResponseRecord& answer) {
        if (record) {
            DebugLogA("Copy Result [%d]\n", static_cast<int>(kResponseRecordSize));
            CopyForHost(answer, *record);
        }
        DebugLogA("OID = [%s]\n", HexText(answer.name, answer.nameLength).c_str());
    });
}

int32_t VxSnmpMgr::SetInformationByStr(const char* oid, const char* host, uint8_t* value,
                                       int32_t valueLength, uint32_t* valueType, uint32_t waitMs,
                                       int32_t attempts, const char* readCommunityText,
                                       const char* writeCommunityText) {
    DebugLogA("SNMP::SetInformationByStr - [%s]\n", host);
    EnsureSocket();
    OidValue name;
    ParseOidText(name, oid);
    return SetInformation(name, host, value, valueLength, valueType, waitMs, attempts,
                          readCommunityText, writeCommunityText);
}

int32_t VxSnmpMgr::SetInformation(const OidValue& oid, const char* host, uint8_t* value,
                                  int32_t valueLength, uint32_t* valueType, uint32_t /*waitMs*/,
                                  int32_t attempts, const char* /*readCommunity*/,
                                  const char* writeCommunityText) {
    DebugLogA("SNMP::SetInformation - [%s]\n", host);
    if (!valueType || (!value && valueLength != 0)) return 0;  // no value to set
    const ValueView newValue = {static_cast<uint8_t>(*valueType), valueLength, value};
    const Request request = {oid,  newValue, kPduSetRequest, writeCommunityText,
                             host, nullptr,  attempts};
    return RunRequest(request, [&](const ResponseRecord& answer) {
        if (answer.valueLength != 0) CopyRaw(value, valueLength, answer.value, answer.valueLength);
        *valueType = answer.valueTag;
    });
}

}  // namespace vndiscover
