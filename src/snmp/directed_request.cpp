#include "snmp/directed_request.h"

#include <cstring>
#include <memory>
#include <string>

#include "snmp/bind_address.h"
#include "snmp/vx_snmp_mgr.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr int32_t kTextValueSize = 256;

// Kept: without sign extension, so a negative INTEGER of fewer than four bytes comes out positive.
std::string IntegerText(const char* value, int32_t length) {
    uint32_t number = 0;
    for (int32_t i = 0; i < length; ++i) {
        const auto byte = static_cast<uint8_t>(value[i]);
        DebugLogA("%d - [%02x]\n", i, byte);
        number = (number << 8) | byte;
    }
    return std::to_string(static_cast<int32_t>(number));  // as "%ld" prints it
}

// Null: nothing is written. A text that does not fit is the caller's fault and goes to the
// runtime's invalid-parameter handler.
void CopyTextForHost(char* out, int32_t outSize, const char* text) {
    if (out) strcpy_s(out, outSize > 0 ? static_cast<size_t>(outSize) : 0, text);
}

struct TextAnswer {
    char value[kTextValueSize];
    uint32_t type;
    int32_t length;  // as GetInformation returns it
};

TextAnswer AskOnce(VxSnmpMgr& manager, const DirectedRequest& request, int32_t attempts,
                   const char* bindAddress) {
    TextAnswer answer = {};
    answer.length = manager.GetInformation(
        request.oid, request.host, answer.value, kTextValueSize, &answer.type, kRequestWaitMs,
        attempts, request.readCommunity, request.writeCommunity, bindAddress);
    return answer;
}

}  // namespace

int32_t RequestText(const DirectedRequest& request, char* outValue, int32_t outSize,
                    uint32_t expectedType) {
    LoadBindAddresses(request.host, true);
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!request.host) return 0;

    char szBindIp[kBindAddressSize];
    if (ChooseBindAddress(request.host, szBindIp) &&
        AskOnce(*manager, request, 1, szBindIp).length == 0) {
        UseSecondRow(szBindIp);
    }
    DebugLogA("szBindIp [%s]\n", szBindIp);
    const TextAnswer answer = AskOnce(*manager, request, kRequestAttempts, szBindIp);
    if (answer.length <= 0 || answer.type != expectedType) return 0;

    if (expectedType == kTagInteger) {
        CopyTextForHost(outValue, outSize, IntegerText(answer.value, answer.length).c_str());
    } else if (expectedType == kTagOctetString) {
        CopyTextForHost(outValue, outSize, answer.value);
    }
    return answer.length;
}

int32_t RequestRaw(const DirectedRequest& request, const HostValue& value) {
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!request.host) return 0;
    return manager->GetInformation(request.oid, request.host, static_cast<char*>(value.bytes),
                                   value.size, value.type, kRequestWaitMs, kRequestAttempts,
                                   request.readCommunity, request.writeCommunity, nullptr);
}

int32_t RequestNext(const DirectedRequest& request, VnResponseRecord* record) {
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!request.host) return 0;
    return manager->GetInformation1(request.oid, request.host, record, kRequestWaitMs,
                                    kRequestAttempts, request.readCommunity, request.writeCommunity,
                                    nullptr, kPduGetNextRequest);
}

int32_t RequestSet(const DirectedRequest& request, const HostValue& value) {
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!request.host) return 0;
    return manager->SetInformationByStr(
        request.oid, request.host, static_cast<uint8_t*>(value.bytes), value.size, value.type,
        kRequestWaitMs, kRequestAttempts, request.readCommunity, request.writeCommunity);
}

}  // namespace vndiscover
