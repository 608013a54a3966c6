#include "snmp/directed_request.h"

#include <cstring>
#include <memory>
#include <string>

#include "snmp/bind_address.h"
#include "snmp/codec/asn.h"
#include "snmp/exchange.h"
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

// With a null buffer nothing is written. Text that does not fit is the caller's fault and goes to
// the runtime's invalid-parameter handler.
void CopyForHost(const TextBuffer& out, const char* text) {
    if (out.text) strcpy_s(out.text, out.size > 0 ? static_cast<size_t>(out.size) : 0, text);
}

}  // namespace

int32_t RequestText(const char* host, const char* oid, const TextBuffer& out, uint32_t expectedType,
                    const Communities& communities) {
    LoadBindAddresses(host, true);
    const auto manager = std::make_unique<VxSnmpMgr>();
    if (!host) return 0;

    char value[kTextValueSize] = {};
    uint32_t type = 0;
    char szBindIp[kBindAddressSize];
    const auto ask = [&](int32_t attempts) {
        return manager->GetInformation(oid, host, value, kTextValueSize, &type, kRequestWaitMs,
                                       attempts, communities.read, communities.write, szBindIp);
    };
    if (ChooseBindAddress(host, szBindIp) && ask(kOneAttempt) == 0) UseSecondRow(szBindIp);
    DebugLogA("szBindIp [%s]\n", szBindIp);
    std::memset(value, 0, sizeof value);  // clears the trial's answer
    type = 0;
    const int32_t length = ask(kRequestAttempts);
    if (length <= 0 || type != expectedType) return 0;

    if (expectedType == kTagInteger) {
        CopyForHost(out, IntegerText(value, length).c_str());
    } else if (expectedType == kTagOctetString) {
        CopyForHost(out, value);
    }
    return length;
}

}  // namespace vndiscover
