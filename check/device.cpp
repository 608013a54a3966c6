// SNMPv1 (RFC 1157):  SEQUENCE { INTEGER 0, OCTET STRING community, PDU }
// PDU:                tag { INTEGER request ID, INTEGER error, INTEGER index,
//                           SEQUENCE { SEQUENCE { OID, value } } }
#include "check/device.h"

namespace check {
namespace {

constexpr uint8_t kGetNext = 0xA1, kResponse = 0xA2, kSet = 0xA3;
constexpr uint8_t kNoSuchObject = 0x80, kEndOfMibView = 0x82;  // SNMPv3 only
constexpr int32_t kNoSuchName = 2;

}  // namespace

Device::Device() {
    variables_[OidOf(kModelOid)] = {kOctetString, BytesOf(kModel)};
    variables_[OidOf(kContactOid)] = {kOctetString, BytesOf("nobody")};
    variables_[OidOf(kServicesOid)] = {kInteger, {72}};
}

Bytes Device::Nothing(const std::string& why) {
    problem_ = why;
    return {};
}

std::string Device::Problem() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return problem_;
}

Bytes Device::Answer(const Bytes& request) {
    const std::lock_guard<std::mutex> lock(mutex_);
    problem_.clear();
    BerReader message = BerReader(request).Enter(kSequence);
    const int32_t version = message.Number();
    if (message.Failed()) return Nothing("the request is not an SNMP message");
    return version == 3 ? AnswerV3(request) : AnswerV1(request);
}

Bytes Device::AnswerV1(const Bytes& request) {
    BerReader message = BerReader(request).Enter(kSequence);
    const Bytes version = message.Whole();
    const Bytes community = message.Octets(kOctetString);
    const Bytes pdu = AnswerPdu(message, false, community == BytesOf(kWriteCommunity));
    if (pdu.empty()) return Nothing("the SNMPv1 request is malformed");
    return Tlv(kSequence, Join({version, Tlv(kOctetString, community), pdu}));
}

Bytes Device::AnswerPdu(BerReader& outer, bool isV3, bool mayWrite) {
    const uint8_t type = outer.NextTag();
    BerReader pdu = outer.Enter(type);
    const Bytes requestId = pdu.Whole();
    pdu.Number();
    pdu.Number();
    BerReader binding = pdu.Enter(kSequence).Enter(kSequence);
    Bytes oid = binding.Octets(kOid);
    const uint8_t tag = binding.NextTag();
    Bytes value = binding.Octets(tag);
    if (binding.Failed()) return {};

    const auto found = type == kGetNext ? variables_.upper_bound(oid) : variables_.find(oid);
    int32_t error = 0;
    Bytes answer;
    if (found == variables_.end()) {
        error = isV3 ? 0 : kNoSuchName;
        const uint8_t exception = type == kGetNext ? kEndOfMibView : kNoSuchObject;
        answer = Tlv(isV3 ? exception : kNull, {});
    } else {
        if (type == kSet && mayWrite) found->second = {tag, value};
        oid = found->first;
        answer = Tlv(found->second.tag, found->second.value);
    }
    const Bytes bindings = Tlv(kSequence, Tlv(kSequence, Join({Tlv(kOid, oid), answer})));
    return Tlv(kResponse, Join({requestId, Integer(error), Integer(error ? 1 : 0), bindings}));
}

}  // namespace check
