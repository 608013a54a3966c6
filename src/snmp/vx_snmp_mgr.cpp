#include "snmp/vx_snmp_mgr.h"

#include <cstdio>
#include <cstring>

#include "snmp/delivery.h"
#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/hex_text.h"
#include "support/scope_exit.h"
#include "support/text_convert.h"

namespace vndiscover {
namespace {

constexpr int32_t kAnswerSize = 260;

const char* OrDefault(const char* community) {
    return community && *community ? community : VN_DEFAULT_COMMUNITY;
}

// Returns the length, or 0 if the request cannot be encoded.
int32_t BuildRequest(const OidValue& oid, const ValueView& value, uint8_t pduType,
                     const char* community, uint8_t (&out)[kMaxMessageSize]) {
    VarBindRecord binding;
    if (MakeVarBind(oid, value, binding) != 0) return 0;
    VarBindList list;
    SetVarBindList(&binding, 1, list);
    return BuildSnmpMessage(out, sizeof out, community, pduType, kRequestId, list);
}

void ParseAnswer(const Datagram& answer, ResponseRecord& record) {
    ParseSnmpResponse(record, answer.data, static_cast<size_t>(answer.length), answer.sender);
}

// A buffer that is too small is left to the runtime, which zeroes it and calls the
// invalid-parameter handler. A null buffer means that the host does not want the value.
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

VxSnmpMgr::VxSnmpMgr() { DebugLogA("VxSNMP::VxSNMP()\n"); }

VxSnmpMgr::~VxSnmpMgr() { DebugLogA("VxSnmpMgr::~VxSnmpMgr()\n"); }

SCKRAW& VxSnmpMgr::Socket() {
    if (!socket) socket = std::make_unique<SCKRAW>();
    return *socket;
}

// ---- sweeps

bool VxSnmpMgr::BeginSweep(const char* line, const SweepSettings& settings) noexcept {
    if (!sweeping.Begin()) return false;  // it would take away the first one's window and file
    sink.resultFile.Reset();              // of a sweep whose thread ended within a message
    DebugLogA("%s", line);
    stop.store(0, std::memory_order_relaxed);
    sink.hWnd = settings.hWnd;
    sink.uMsg = settings.uMsg;
    timeout = settings.timeout;
    return true;
}

void VxSnmpMgr::RenewSocket() {
    SCKRAW::KeepStarted();
    // Kept: the previous sweep's object is leaked (a few bytes and one WinSock reference).
    (void)socket.release();
    Socket();
}

void VxSnmpMgr::EndSweep() noexcept { sweeping.End(); }

template <class Work>
int32_t VxSnmpMgr::RunSweep(const SweepSettings& settings, Work&& work) {
    if (!BeginSweep("SNMP::Discover\n", settings)) return 0;
    // The host waits for the final message, so it is sent on every exit path.
    const ScopeExit end([this] { FinishSweep(); });
    work();
    return 0;
}

int32_t VxSnmpMgr::Discover(const char* oid, HWND hWnd, UINT uMsg, UINT timeoutMs, BYTE useIPv6,
                            const wchar_t* resultPath, const char* readCommunityText,
                            const char* writeCommunityText, const char* jsonRequest) {
    const SweepSettings settings = {hWnd, uMsg, timeoutMs, useIPv6, resultPath};
    return RunSweep(settings, [&] {
        Sweep(settings, oid, readCommunityText, writeCommunityText, jsonRequest);
    });
}

int32_t VxSnmpMgr::Discover(const wchar_t* oid, const SweepSettings& settings,
                            const wchar_t* readCommunityText, const wchar_t* writeCommunityText,
                            const wchar_t* jsonRequest) {
    return RunSweep(settings, [&] {
        const std::string json = WideToAnsi(jsonRequest);
        Sweep(settings, WideToAnsi(oid).c_str(), WideToAnsi(readCommunityText).c_str(),
              WideToAnsi(writeCommunityText).c_str(), jsonRequest ? json.c_str() : nullptr);
    });
}

void VxSnmpMgr::Sweep(const SweepSettings& settings, const char* oid, const char* readCommunityText,
                      const char* writeCommunityText, const char* jsonRequest) {
    sink.OpenFile(settings.resultPath);
    RenewSocket();
    CopyText(readCommunity, OrDefault(readCommunityText));
    CopyText(writeCommunity, OrDefault(writeCommunityText));
    std::string szDisOid;
    if (!FitsJsonRequest(jsonRequest) || !ChooseDiscoveryOid(oid, jsonRequest, szDisOid)) return;
    // Kept: text with fewer than two arcs requests the empty OID.
    const OidValue name = OidOf(szDisOid.c_str());
    uint8_t request[kMaxMessageSize] = {};
    const int32_t length = BuildRequest(name, kNullValue, kPduGetRequest, readCommunity, request);
    if (length == 0) return;
    AdapterSweep adapters(Socket(), sock, SnmpSweepRequest(settings.useIPv6, request, length));
    // Kept: a stop request is not tested here; each address that remains is sent from all the same.
    while (adapters.Next()) {
        HandleEvents(settings.timeout, adapters.IsLast(), adapters.Address(), jsonRequest);
    }
}

void VxSnmpMgr::FinishSweep() {
    // The file is closed after the final message, while whose handling the host may start the next
    // sweep. It leaves the sink first, so that the next sweep does not write to it, and is flushed,
    // so that no line follows into the next sweep's file of the same name.
    const OwnedFile file(std::move(sink.resultFile));
    if (file) std::fflush(file.Get());
    EndSweep();
    DebugLogA("SNMP::Discover - ended\n");
    sink.SendResult(nullptr, nullptr);
}

int32_t VxSnmpMgr::StopDiscover() {
    DebugLogA("VxSnmpMgr::StopDiscover\n");
    stop.store(1, std::memory_order_relaxed);
    return 0;
}

// Kept: timeout and isLast have no effect; the limits are fixed.
void VxSnmpMgr::HandleEvents(UINT /*timeout*/, bool /*isLast*/, const char* bindAddress,
                             const char* jsonRequest) {
    DebugLogA("HandleEvents start\n");
    CollectAnswers();
    Delivery delivery(devices, sink, stop, jsonRequest);
    while (const ResponseRecord* device = delivery.Next()) {
        while (const char* szKey = delivery.NextOid()) {
            char szValue[kAnswerSize] = {};
            // Kept: after a failed send, -1, the member keeps the host's string too.
            if (GetInformation(szKey, device->address, szValue, kAnswerSize, nullptr,
                               kRequestWaitMs, kRequestAttempts, readCommunity, writeCommunity,
                               bindAddress) <= 0) {
                continue;
            }
            DebugLogA("  szValue [%s]\n", szValue);
            delivery.Put(szValue);
        }
        delivery.Send();
    }
    delivery.LogEnd();
}

// Every datagram takes an entry, whatever it holds; one that is not an answer has no value.
void VxSnmpMgr::CollectAnswers() {
    devices.StartOver();
    DatagramCollector answers(Socket(), sock.Get(), kSweepLimits, stop);
    for (Datagram answer; !devices.IsFull() && answers.Next(answer);) {
        ParseAnswer(answer, devices.Add());
    }
    devices.LogCount();
}

// ---- requests to one device

// 1: an answer came, from any sender and with any content; 0: none came, or nothing was sent; -1:
// the send failed.
int32_t VxSnmpMgr::Ask(const Query& query, const ValueView& value, ResponseRecord& answer) {
    if (!query.host || query.oid.length == 0) return 0;
    uint8_t request[kMaxMessageSize] = {};
    const int32_t length =
        BuildRequest(query.oid, value, query.pduType, OrDefault(query.community), request);
    if (length == 0) return 0;
    const ExchangeResult result =
        RunExchange(Socket(), OpenFor(Socket(), query.host, query.bindAddress),
                    {query.host, request, length, query.attempts, OnSilence::kWaitAgain});
    if (result.wasSilent) timeout = 0;
    if (result.outcome == 1) ParseAnswer(result.datagram, answer);
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
