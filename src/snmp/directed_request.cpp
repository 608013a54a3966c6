#include "snmp/directed_request.h"

#include <cstring>
#include <memory>
#include <string>

#include "snmp/bind_address.h"
#include "snmp/vx_snmp_mgr.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr int32_t kValueSize256 = 256;

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

}  // namespace

void CopyTextForHost(char* out, int32_t outSize, const char* text) {
    if (out) strcpy_s(out, outSize > 0 ? static_cast<size_t>(outSize) : 0, text);
}

int32_t RequestText(const char* host, const char* oid, char* outValue, int32_t outSize,
                    uint32_t expectedType, const char* readCommunity, const char* writeCommunity) {
    LoadBindAddresses(host, true);
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!host) return 0;

    char value[kValueSize256] = {};
    uint32_t type = 0;
    const auto ask = [&](int32_t attempts, const char* bindAddress) {
        return manager->GetInformation(oid, host, value, kValueSize256, &type, kDirectedWaitMs,
                                       attempts, readCommunity, writeCommunity, bindAddress);
    };
    char szBindIp[kBindAddressSize];
    ChooseBindAddress(host, szBindIp,
                      [&](const char* bindAddress) { return ask(1, bindAddress) != 0; });
    DebugLogA("szBindIp [%s]\n", szBindIp);
    std::memset(value, 0, sizeof value);  // what the trial left
    type = 0;
    const int32_t length = ask(kDirectedAttempts, szBindIp);
    if (length <= 0 || type != expectedType) return 0;

    if (expectedType == kTagInteger) {
        CopyTextForHost(outValue, outSize, IntegerText(value, length).c_str());
    } else if (expectedType == kTagOctetString) {
        CopyTextForHost(outValue, outSize, value);
    }
    return length;
}

int32_t RequestRaw(const char* host, const char* oid, uint8_t* value, int32_t valueSize,
                   uint32_t* valueType, const char* readCommunity, const char* writeCommunity) {
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!host) return 0;
    return manager->GetInformation(oid, host, reinterpret_cast<char*>(value), valueSize, valueType,
                                   kDirectedWaitMs, kDirectedAttempts, readCommunity,
                                   writeCommunity, nullptr);
}

int32_t RequestNext(const char* host, const char* oid, VnResponseRecord* record,
                    const char* readCommunity, const char* writeCommunity) {
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!host) return 0;
    return manager->GetInformation1(oid, host, record, kDirectedWaitMs, kDirectedAttempts,
                                    readCommunity, writeCommunity, nullptr, kPduGetNextRequest);
}

int32_t RequestSet(const char* host, const char* oid, uint8_t* value, int32_t valueLength,
                   uint32_t* valueType, const char* readCommunity, const char* writeCommunity) {
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!host) return 0;
    return manager->SetInformationByStr(oid, host, value, valueLength, valueType, kDirectedWaitMs,
                                        kDirectedAttempts, readCommunity, writeCommunity);
}

}  // namespace vndiscover
