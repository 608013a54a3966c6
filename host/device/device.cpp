#include "device/device.h"

#include <vndiscover.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>

#include "model/asking/json_request.h"
#include "platform/this_computer.h"
#include "platform/wide_text.h"
#include "values/ip_address.h"
#include "values/module_types.h"

namespace vndiscover::host {

// The portable copy of the public header's types and sizes.
static_assert(kInteger == VN_TYPE_INTEGER && kOctetString == VN_TYPE_OCTET_STRING);
static_assert(kNull == VN_TYPE_NULL && kObjectIdentifier == VN_TYPE_OBJECT_IDENTIFIER);
static_assert(kIpAddress == VN_TYPE_IP_ADDRESS && kCounter32 == VN_TYPE_COUNTER32);
static_assert(kGauge32 == VN_TYPE_GAUGE32 && kTimeTicks == VN_TYPE_TIME_TICKS);
static_assert(kOpaque == VN_TYPE_OPAQUE && kCounter64 == VN_TYPE_COUNTER64);
static_assert(kJsonRequestSize == VN_JSON_REQUEST_SIZE && kRequestOidMax == VN_REQUEST_OID_MAX);
static_assert(kAddressSize == VN_ADDRESS_SIZE && kValueSize == VN_VALUE_SIZE);
static_assert(std::string_view(kDefaultDiscoveryOid) == VN_DEFAULT_DISCOVERY_OID);

namespace {

// Remains if no answer came: a readable answer has its type, and an unreadable one has 0.
constexpr uint32_t kNotSet = UINT32_MAX;
constexpr char kTooLongRequest[] = "community and OID are too long for an SNMPv1 request";
constexpr char kTooLongForV1[] = "no value, or too long for SNMPv1; SNMPv3 may read it";
const Oid kUpTime = {1, 3, 6, 1, 2, 1, 1, 3};  // asked for to see whether a device is there
constexpr char kLowLevel[] = "this user may not read it at this security level";

std::string_view Bytes(const uint8_t* bytes, size_t count) {
    return {reinterpret_cast<const char*>(bytes), count};
}

Answer FromRecord(const VnResponseRecord& record, const Oid& asked) {
    const auto oid = DecodeOid(Bytes(record.oid, record.oidLength));
    if (!oid) return Failed(Status::kUnreadable, asked);
    Answer answer = AnsweredWith(*oid, record.valueType, Bytes(record.value, record.valueLength));
    answer.sender = record.address;
    return answer;
}

// The last arguments of these exports are the user's.
template <class Export, class... Arguments>
auto CallV3(const Security& user, Export call, Arguments... arguments) {
    return call(arguments..., user.user.c_str(), user.UseAuth(), user.authPassword.Get(),
                user.UsePriv(), user.privPassword.Get(), user.authLabel.c_str(),
                user.privLabel.c_str());
}

template <class Export, class... Result>
int32_t AskV3(const Security& user, Export ask, const char* host, const Oid& oid,
              Result... result) {
    return CallV3(user, ask, host, OidToText(oid).c_str(), result..., kUnusedTimeoutMs,
                  kUnusedRetries);
}

bool NeedsZone(const std::string& host) {
    const auto address = ParseIpAddress(host);
    return address && !address->IsIPv4() && host.find('%') == std::string::npos &&
           address->bytes[0] == '\xFE' && (address->bytes[1] & 0xC0) == 0x80;
}

// Addresses with their zones, by link-local address, that this process has found out: devices of a
// scan are asked again and again.
std::mutex g_zonesMutex;
std::map<std::string, std::string> g_zonedHosts;

}  // namespace

std::string CommunityOf(const std::string& given) {
    return given.empty() ? VN_DEFAULT_COMMUNITY : given;
}

Device::Device(const Login& login, const std::string& host)
    : host_(ToAnsi(host)), community_(ToAnsi(login.community)), security_(login.security) {}

// The module would send a longer request malformed, and no device answers that.
bool Device::CanSend(const Oid& oid) const {
    return security_ || CommunityOf(community_).size() + RequestOctets(oid) <= kRequestMax;
}

// Sweeps give link-local addresses without a zone; directed requests leave by one adapter only.
const char* Device::Host() const {
    if (std::exchange(isZoned_, true) || !NeedsZone(host_)) return host_.c_str();
    const std::string given = host_;
    {
        const std::lock_guard<std::mutex> lock(g_zonesMutex);
        if (const auto found = g_zonedHosts.find(given); found != g_zonedHosts.end())
            return (host_ = found->second).c_str();
    }
    std::vector<std::string> hosts;
    for (const AdapterAddress& row : IPv6Adapters().addresses) {
        if (row.isUp == true) hosts.push_back(given + "%" + std::to_string(row.zone));
    }
    if (hosts.size() == 1) hosts.clear();
    for (const bool isPing : {true, false}) {  // a device may ignore pings
        for (const std::string& host : hosts) {
            host_ = host;
            if (!IsThere(isPing)) continue;
            const std::lock_guard<std::mutex> lock(g_zonesMutex);
            g_zonedHosts[given] = host_;
            return host_.c_str();
        }
    }
    return (host_ = given).c_str();
}

bool Device::IsThere(bool isPing) const {
    constexpr unsigned kPingMs = 1000;
    if (isPing) return VxPing(host_.c_str(), kPingMs) != 0;
    const Status status = GetNext(kUpTime).status;
    return status != Status::kNoAnswer && status != Status::kSendFailed;
}

bool Device::Ping() const { return VxPing(Host(), kPingTimeoutMs) != 0; }

Answer Device::Get(const Oid& oid) const {
    if (security_) return GetV3(oid);
    if (!CanSend(oid)) return Failed(Status::kUnreadable, oid, kTooLongRequest);
    uint8_t value[VN_REQUEST_VALUE_SIZE] = {};
    uint32_t type = kNotSet;
    const int32_t length =
        GetSnmpRequestRaw(Host(), OidToText(oid).c_str(), value, sizeof value, &type,
                          kUnusedTimeoutMs, kUnusedRetries, community_.c_str(), nullptr);
    if (length < 0) return Failed(Status::kSendFailed, oid);
    if (type == kNotSet) return Failed(Status::kNoAnswer, oid);
    if (type == 0) return Failed(Status::kUnreadable, oid, kTooLongForV1);
    return AnsweredWith(oid, type, Bytes(value, static_cast<size_t>(length)));
}

// A get over SNMPv3 delivers only text, up to its first zero byte. A get-next request for the OID
// just before it delivers whole values of all types, and the reason of a refusal.
Answer Device::GetV3(const Oid& oid) const {
    char text[VN_REQUEST_VALUE_SIZE] = {};
    uint32_t type = kNotSet;
    const int32_t reportLength = AskV3(*security_, GetSnmpRequestV3, Host(), oid, text,
                                       static_cast<int32_t>(sizeof text), &type);
    if (type == kNull) return Failed(Status::kRefused, oid, kLowLevel);
    if (IsNoValue(type)) return AnsweredWith(oid, type, "");
    if (type == kInteger && reportLength > 0) {
        std::string problem;
        const auto number = ParseSetValue("integer", text, problem);
        return AnsweredWith(oid, type, number ? number->bytes : text);
    }
    Answer answer = GetNextV3(JustBefore(oid));
    const bool isAnswered = answer.status == Status::kAnswered;
    if (isAnswered && answer.oid == oid) return answer;
    // The get-next request did not return it: use the text, which may be cut.
    if (type == kOctetString && reportLength > 0) return AnsweredWith(oid, type, text);
    return Failed(isAnswered ? Status::kUnreadable : answer.status, oid, answer.note);
}

Answer Device::GetNext(const Oid& oid) const {
    Answer answer = security_ ? GetNextV3(oid) : GetNextV1(oid);
    // Silence for another object may be of that alone.
    const bool isSilent = answer.status == Status::kNoAnswer && oid == kUpTime;
    if (isSilent || answer.status == Status::kSendFailed) {
        // The device may be on another adapter by now. The next reading finds out.
        const std::lock_guard<std::mutex> lock(g_zonesMutex);
        g_zonedHosts.erase(host_.substr(0, host_.find('%')));
    }
    return answer;
}

Answer Device::GetNextV1(const Oid& oid) const {
    if (!CanSend(oid)) return Failed(Status::kUnreadable, oid, kTooLongRequest);
    VnResponseRecord record = {};
    const int32_t length =
        GetNextSnmpRequestRaw(Host(), OidToText(oid).c_str(), &record, kUnusedTimeoutMs,
                              kUnusedRetries, community_.c_str(), nullptr);
    if (length < 0) return Failed(Status::kSendFailed, oid);
    if (record.oidLength != 0) return FromRecord(record, oid);
    // The module fills in the address for every answer, even if it could not read the variable.
    return record.address[0] ? Failed(Status::kUnreadable, oid, kTooLongForV1)
                             : Failed(Status::kNoAnswer, oid);
}

Answer Device::GetNextV3(const Oid& oid) const {
    VnResponseRecord record = {};
    const int32_t reportLength = AskV3(*security_, GetNextSnmpRequestV3, Host(), oid, &record);
    if (reportLength < 0) return Failed(Status::kSendFailed, oid);
    if (reportLength == 0) return Failed(Status::kNoAnswer, oid);
    if (record.oidLength == 0) return Failed(Status::kOnlyDiscovered, oid);
    Answer answer = FromRecord(record, oid);
    // An error status repeats the request's binding; a missing variable has a type of its own.
    if (answer.oid == oid && answer.type == kNull) return Failed(Status::kRefused, oid, kLowLevel);
    const char* reason = RefusalReason(oid, answer.oid, answer.type);
    return reason ? Failed(Status::kRefused, oid, reason) : answer;
}

Answer Device::Set(const Oid& oid, const SetValue& value, const std::string& writeCommunity) const {
    uint8_t buffer[VN_REQUEST_VALUE_SIZE] = {};
    const auto size = static_cast<int32_t>(value.bytes.size());
    std::copy(value.bytes.begin(), value.bytes.end(), buffer);
    // Only the low byte is sent. An answer clears the bit above it.
    uint32_t type = value.type | 0x100;
    const int32_t length =
        SetSnmpRequestRaw(Host(), OidToText(oid).c_str(), buffer, size, &type, kUnusedTimeoutMs,
                          kUnusedRetries, nullptr, ToAnsi(writeCommunity).c_str());
    if (length < 0) return Failed(Status::kSendFailed, oid);
    if (type & 0x100) return Failed(Status::kNoAnswer, oid);
    if (type == 0) return Failed(Status::kUnreadable, oid);
    if (length > size)  // the value did not fit and was not copied
        return Failed(Status::kUnreadable, oid, "its value is longer than the one sent");
    return AnsweredWith(oid, type, Bytes(buffer, static_cast<size_t>(length)));
}

Asker AskerOf(const Device& device) {
    Asker asker;
    asker.getNext = [&device](const Oid& oid) { return device.GetNext(oid); };
    asker.isV3 = device.IsV3();
    return asker;
}

std::optional<std::string> Device::Information() const {
    char value[VN_INFORMATION_SIZE] = {};
    if (GetSnmpInformation(Host(), value, community_.c_str(), nullptr) <= 0) return std::nullopt;
    return AnsweredWith({}, kOctetString, std::string_view(value, strnlen(value, sizeof value)))
        .bytes;
}

SnmpSweep SweepFor(const Login& login, const Oid& oid, bool useIPv6) {
    SnmpSweep sweep;
    sweep.useIPv6 = useIPv6;
    sweep.oid = ToWide(OidToText(oid));
    sweep.community = ToWide(login.community);
    sweep.security = login.security.get();
    // SNMPv3 sweeps accept an OID only in a JSON request.
    const bool isDefault = sweep.oid == ToWide(VN_DEFAULT_DISCOVERY_OID);
    if (login.security && !isDefault) sweep.request = ToWide(RequestFor(OidToText(oid)));
    return sweep;
}

bool RunSweep(HWND window, UINT message, const SnmpSweep& sweep) {
    const ULONGLONG startMs = GetTickCount64();
    const bool hasRequest = !sweep.request.empty();
    const auto discover = hasRequest ? DiscoverDevicesByOIDjson : DiscoverDevicesByOID;
    if (sweep.security && hasRequest) {
        CallV3(*sweep.security, DiscoverV3DevicesByOIDjson, window, message, kUnusedSweepTimeoutMs,
               sweep.useIPv6, sweep.request.c_str());
    } else if (sweep.security) {
        CallV3(*sweep.security, DiscoverSnmpV3, window, message, kUnusedSweepTimeoutMs,
               sweep.useIPv6);
    } else {
        discover(window, message, kUnusedSweepTimeoutMs, sweep.useIPv6,
                 (hasRequest ? sweep.request : sweep.oid).c_str(), sweep.resultPath.c_str(),
                 sweep.community.c_str(), nullptr);
    }
    return GetTickCount64() - startMs >= kLeastSweepMs;
}

bool RunProbe(HWND window, UINT message, unsigned timeoutMs, const std::string& probe) {
    const bool isOnANetwork = IsOnANetwork();
    const ULONGLONG startMs = GetTickCount64();
    DiscoverSoap(window, message, timeoutMs, probe.data(), static_cast<int32_t>(probe.size()));
    // The module waits only after it has sent something, in whole seconds, even by the loopback.
    const unsigned waitMs = timeoutMs / 1000 * 1000;
    return isOnANetwork && GetTickCount64() - startMs >= waitMs + waitMs / 2;
}

}  // namespace vndiscover::host
