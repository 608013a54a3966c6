#include "snmp/vx_snmp_mgr.h"

#include <cstring>

#include "snmp/codec/asn.h"
#include "snmp/codec/snmp_message.h"
#include "snmp/exchange.h"
#include "support/debug_log.h"
#include "support/hex_text.h"
#include "support/text_convert.h"

namespace vndiscover {
namespace {

// A buffer that is too small is left to the runtime, which zeroes it and calls the
// invalid-parameter handler. A null buffer means that the host does not want the value.
void CopyRaw(void* out, int32_t outSize, const void* bytes, size_t count) {
    if (out) memcpy_s(out, outSize > 0 ? static_cast<size_t>(outSize) : 0, bytes, count);
}

void CopyForHost(const ResponseRecord& answer, VnResponseRecord& out) {
    out.valueType = answer.valueTag;
    out.valueLength = answer.valueLength;
    std::memcpy(out.address, answer.address, sizeof out.address);
    std::memcpy(out.value, answer.value, sizeof out.value);
    std::memcpy(out.oid, answer.name, sizeof out.oid);
    out.oidLength = answer.nameLength;
}

}  // namespace

VxSnmpMgr::VxSnmpMgr() { DebugLogA("VxSNMP::VxSNMP()\n"); }

VxSnmpMgr::~VxSnmpMgr() { DebugLogA("VxSnmpMgr::~VxSnmpMgr()\n"); }

const char* VxSnmpMgr::OrDefault(const char* community) {
    return community && *community ? community : VN_DEFAULT_COMMUNITY;
}

SCKRAW& VxSnmpMgr::Socket() {
    if (!socket) socket = std::make_unique<SCKRAW>();
    return *socket;
}

int32_t VxSnmpMgr::Discover(const char* oid, HWND hWnd, UINT uMsg, UINT timeoutMs, BYTE useIPv6,
                            const wchar_t* resultPath, const char* readCommunityText,
                            const char* writeCommunityText, const char* jsonRequest) {
    RunningSweep sweep(*this, "SNMP::Discover\n", {hWnd, uMsg, timeoutMs, useIPv6, resultPath},
                       SweepEnd::kFinalMessage);
    if (sweep) Sweep(sweep, oid, readCommunityText, writeCommunityText, jsonRequest);
    return 0;
}

int32_t VxSnmpMgr::Discover(const wchar_t* oid, const SweepSettings& settings,
                            const wchar_t* readCommunityText, const wchar_t* writeCommunityText,
                            const wchar_t* jsonRequest) {
    RunningSweep sweep(*this, "SNMP::Discover\n", settings, SweepEnd::kFinalMessage);
    if (!sweep) return 0;
    const std::string json = WideToAnsi(jsonRequest);
    Sweep(sweep, WideToAnsi(oid).c_str(), WideToAnsi(readCommunityText).c_str(),
          WideToAnsi(writeCommunityText).c_str(), jsonRequest ? json.c_str() : nullptr);
    return 0;
}

int32_t VxSnmpMgr::StopDiscover() {
    DebugLogA("VxSnmpMgr::StopDiscover\n");
    stop.store(1, std::memory_order_relaxed);
    return 0;
}

// ---- requests to one device

// 1: an answer came, from any sender and with any content; 0: none came, or nothing was sent; -1:
// the send failed.
int32_t VxSnmpMgr::Ask(const Query& query, const ValueView& value, ResponseRecord& answer) {
    if (!query.host || query.oid.length == 0) return 0;
    uint8_t request[kMaxMessageSize] = {};
    const int32_t length =
        BuildRequest(request, query.oid, value, query.pduType, OrDefault(query.community));
    if (length == 0) return 0;
    const ExchangeResult result =
        RunExchange(Socket(), OpenFor(Socket(), query.host, query.bindAddress),
                    {query.host, request, length, query.attempts, OnSilence::kWaitAgain});
    if (result.wasSilent) timeout = 0;
    const Datagram& datagram = result.datagram;
    if (result.outcome == 1) {
        ParseSnmpResponse(answer, datagram.data, static_cast<size_t>(datagram.length),
                          datagram.sender);
    }
    return result.outcome;
}

int32_t VxSnmpMgr::GetInformation(const char* oid, const char* host, char* outValue,
                                  int32_t outSize, uint32_t* valueType, uint32_t /*waitMs*/,
                                  int32_t attempts, const char* readCommunityText,
                                  const char* /*writeCommunity*/, const char* bindAddress) {
    Socket();
    return GetInformation(
        {OidOf(oid), kPduGetRequest, host, readCommunityText, bindAddress, attempts}, outValue,
        outSize, valueType);
}

int32_t VxSnmpMgr::GetInformation(const Query& query, char* outValue, int32_t outSize,
                                  uint32_t* valueType) {
    DebugLogA("SNMP::GetInformation - [%s]\n", query.host);
    ResponseRecord answer = {};
    const int32_t outcome = Ask(query, kNullValue, answer);
    if (outcome != 1) return outcome;
    // With the zero byte that follows the value in the record.
    if (answer.valueLength != 0) CopyRaw(outValue, outSize, answer.value, answer.valueLength + 1u);
    if (valueType) *valueType = answer.valueTag;
    return answer.valueLength;
}

int32_t VxSnmpMgr::GetInformation1(const char* oid, const char* host, VnResponseRecord* record,
                                   uint32_t /*waitMs*/, int32_t attempts,
                                   const char* readCommunityText, const char* /*writeCommunity*/,
                                   const char* bindAddress, uint8_t pduType) {
    DebugLogA("SNMP::GetInformation1 - [%s]\n", host);
    Socket();
    ResponseRecord answer = {};
    const int32_t outcome = Ask(
        {OidOf(oid), pduType, host, readCommunityText, bindAddress, attempts}, kNullValue, answer);
    if (outcome != 1) return outcome;
    if (record) {
        DebugLogA("Copy Result [%d]\n", static_cast<int>(kResponseRecordSize));
        CopyForHost(answer, *record);
    }
    DebugLogA("OID = [%s]\n", HexText(answer.name, answer.nameLength).c_str());
    return answer.valueLength;
}

int32_t VxSnmpMgr::SetInformationByStr(const char* oid, const char* host, uint8_t* value,
                                       int32_t valueLength, uint32_t* valueType,
                                       uint32_t /*waitMs*/, int32_t attempts,
                                       const char* /*readCommunity*/,
                                       const char* writeCommunityText) {
    DebugLogA("SNMP::SetInformationByStr - [%s]\n", host);
    Socket();
    return SetInformation({OidOf(oid), kPduSetRequest, host, writeCommunityText, nullptr, attempts},
                          value, valueLength, valueType);
}

int32_t VxSnmpMgr::SetInformation(const Query& query, uint8_t* value, int32_t valueLength,
                                  uint32_t* valueType) {
    DebugLogA("SNMP::SetInformation - [%s]\n", query.host);
    if (!valueType || (!value && valueLength != 0)) return 0;  // no value to set
    ResponseRecord answer = {};
    const int32_t outcome =
        Ask(query, {static_cast<uint8_t>(*valueType), valueLength, value}, answer);
    if (outcome != 1) return outcome;
    if (answer.valueLength != 0) CopyRaw(value, valueLength, answer.value, answer.valueLength);
    *valueType = answer.valueTag;
    return answer.valueLength;
}

}  // namespace vndiscover
