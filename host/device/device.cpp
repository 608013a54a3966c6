#include "device/device.h"

#include <vndiscover.h>

#include <cstring>

#include "model/walk_step.h"

namespace vndiscover::host {
namespace {

constexpr uint32_t kUnusedTimeoutMs = 2000;
constexpr uint32_t kUnusedRetries = 5;

std::string_view Bytes(const uint8_t* bytes, size_t count) {
    return {reinterpret_cast<const char*>(bytes), count};
}

Answer FromRecord(const VnResponseRecord& record, const Oid& asked) {
    // The module fills the address of every answer, also of one whose variable it could not read.
    if (record.oidLength == 0) {
        return Failed(record.address[0] ? Status::kUnreadable : Status::kNoAnswer, asked);
    }
    const auto oid = DecodeOid(Bytes(record.oid, record.oidLength));
    if (!oid) return Failed(Status::kUnreadable, asked);
    return AnsweredWith(*oid, record.valueType, Bytes(record.value, record.valueLength));
}

}  // namespace

Answer Device::Get(const Oid& oid) const {
    if (security_) return GetV3(oid);
    uint8_t value[VN_REQUEST_VALUE_SIZE] = {};
    uint32_t type = 0;  // stays 0 when no answer came, while an answer may well have an empty value
    const int32_t length =
        GetSnmpRequestRaw(host_.c_str(), OidToText(oid).c_str(), value, sizeof value, &type,
                          kUnusedTimeoutMs, kUnusedRetries, readCommunity_.c_str(), nullptr);
    if (length < 0) return Failed(Status::kSendFailed, oid);
    if (type == 0) return Failed(Status::kNoAnswer, oid);
    return AnsweredWith(oid, type, Bytes(value, static_cast<size_t>(length)));
}

Answer Device::GetV3(const Oid& oid) const {
    char text[VN_REQUEST_VALUE_SIZE] = {};
    uint32_t type = 0;
    const int32_t reportLength = GetSnmpRequestV3(
        host_.c_str(), OidToText(oid).c_str(), text, sizeof text, &type, kUnusedTimeoutMs,
        kUnusedRetries, security_->user.c_str(), security_->useAuth, security_->authPassword.Get(),
        security_->usePriv, security_->privPassword.Get(), security_->authLabel.c_str(),
        security_->privLabel.c_str());
    if (reportLength > 0 && type == kInteger) {
        std::string problem;
        const auto number = ParseSetValue("integer", text, problem);
        return AnsweredWith(oid, type, number ? number->bytes : text);
    }
    if (reportLength > 0) return AnsweredWith(oid, type, text);
    if (type == 0) return Failed(Status::kNoAnswer, oid);
    return IsNoValue(type) ? AnsweredWith(oid, type, "") : GetByNext(oid);
}

// An SNMPv3 get delivers text alone, that is INTEGER and OCTET STRING. A get-next request for the
// place just before brings values of all types, and a refusal with its reason.
Answer Device::GetByNext(const Oid& oid) const {
    Oid before = oid;
    if (before.back() == 0) {
        before.pop_back();
    } else {
        --before.back();
    }
    Answer answer = GetNext(before);
    if (answer.status == Status::kAnswered && answer.oid != oid)
        answer.status = Status::kUnreadable;
    answer.oid = oid;
    return answer;
}

Answer Device::GetNext(const Oid& oid) const {
    VnResponseRecord record = {};
    const std::string text = OidToText(oid);
    if (!security_) {
        const int32_t length =
            GetNextSnmpRequestRaw(host_.c_str(), text.c_str(), &record, kUnusedTimeoutMs,
                                  kUnusedRetries, readCommunity_.c_str(), nullptr);
        return length < 0 ? Failed(Status::kSendFailed, oid) : FromRecord(record, oid);
    }
    GetNextSnmpRequestV3(host_.c_str(), text.c_str(), &record, kUnusedTimeoutMs, kUnusedRetries,
                         security_->user.c_str(), security_->useAuth, security_->authPassword.Get(),
                         security_->usePriv, security_->privPassword.Get(),
                         security_->authLabel.c_str(), security_->privLabel.c_str());
    record.address[0] = '\0';  // here it is the host's text, whether an answer came or not
    Answer answer = FromRecord(record, oid);
    const char* reason = ReportReason(answer.oid);
    if (answer.status == Status::kAnswered && answer.type == kCounter32 && reason &&
        !ReportReason(oid)) {
        answer = Failed(Status::kRefused, oid);
        answer.note = reason;
    }
    return answer;
}

Answer Device::Set(const Oid& oid, const SetValue& value) const {
    uint8_t buffer[VN_REQUEST_VALUE_SIZE] = {};
    const auto size = static_cast<int32_t>(value.bytes.size());
    std::memcpy(buffer, value.bytes.data(), value.bytes.size());
    // Only the low byte goes out. The bit above it tells an answer of the same type from no answer.
    uint32_t type = value.type | 0x100;
    const int32_t length =
        SetSnmpRequestRaw(host_.c_str(), OidToText(oid).c_str(), buffer, size, &type,
                          kUnusedTimeoutMs, kUnusedRetries, nullptr, writeCommunity_.c_str());
    if (length < 0) return Failed(Status::kSendFailed, oid);
    if (type & 0x100) return Failed(Status::kNoAnswer, oid);
    if (length > size) {  // what does not fit was not copied
        Answer answer = Failed(Status::kUnreadable, oid);
        answer.note = "its value is longer than the one sent";
        return answer;
    }
    return AnsweredWith(oid, type, Bytes(buffer, static_cast<size_t>(length)));
}

std::optional<std::string> Device::Information() const {
    char value[VN_INFORMATION_SIZE] = {};
    if (GetSnmpInformation(host_.c_str(), value, readCommunity_.c_str(), nullptr) <= 0)
        return std::nullopt;
    return ContentOf(kOctetString, std::string_view(value, strnlen(value, sizeof value))).bytes;
}

}  // namespace vndiscover::host
