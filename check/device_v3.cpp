// SNMPv3 (RFC 3412, 3414):
//   SEQUENCE { INTEGER 3,
//              SEQUENCE { INTEGER msgID, INTEGER msgMaxSize, OCTET STRING flags, INTEGER 3 },
//              OCTET STRING { SEQUENCE { engine ID, boots, time, user, MAC, salt } },
//              SEQUENCE { context engine ID, context, PDU }, or that as cipher text }
#include <algorithm>

#include "check/device.h"

namespace check {
namespace {

constexpr uint8_t kReport = 0xA8, kCounter32 = 0x41;
constexpr uint8_t kAuthFlag = 1, kPrivFlag = 2;
constexpr int32_t kBoots = 7, kTime = 4711;
constexpr char kUnknownEngineIds[] = ".1.3.6.1.6.3.15.1.1.4.0";
const Bytes kEngineId = {0x80, 0x00, 0x1F, 0x88, 0x04, 'c', 'h', 'e', 'c', 'k'};
const Bytes kSalt = {0x00, 0x00, 0x00, 0x07, 0xC0, 0xFF, 0xEE, 0x01};

// RFC 3414 and RFC 7860.
size_t MacSize(Digest digest) {
    constexpr size_t kSizes[] = {0, 12, 12, 16, 24, 32, 48};
    return kSizes[static_cast<size_t>(digest)];
}

Bytes Mac(Digest digest, const Bytes& key, const Bytes& message) {
    Bytes mac = HmacOf(digest, key, message);
    mac.resize(MacSize(digest));
    return mac;
}

Bytes BigEndian(int32_t value) {
    return {uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value)};
}

Bytes Crypted(Cipher cipher, const Bytes& key, const Bytes& salt, Bytes text, bool encrypts) {
    const Bytes first(key.begin(), key.begin() + 8), second(key.begin() + 8, key.begin() + 16);
    if (cipher == Cipher::kAes) {
        return AesCfb(Join({first, second}), Join({BigEndian(kBoots), BigEndian(kTime), salt}),
                      text, encrypts);
    }
    Bytes iv = second;
    for (size_t i = 0; i < iv.size(); ++i) iv[i] ^= salt[i];
    text.resize((text.size() + 7) / 8 * 8);
    return DesCbc(first, iv, text, encrypts);
}

}  // namespace

struct Device::V3Request {
    Bytes messageId, engineId, mac, salt, data;
    uint8_t flags = 0;
    size_t macAt = 0;  // in the datagram
    bool failed = false;

    explicit V3Request(const Bytes& datagram) {
        BerReader message = BerReader(datagram).Enter(kSequence);
        message.Number();
        BerReader header = message.Enter(kSequence);
        messageId = header.Whole();
        header.Number();
        const Bytes flagOctet = header.Octets(kOctetString);
        if (!flagOctet.empty()) flags = flagOctet[0];
        BerReader security = message.Enter(kOctetString).Enter(kSequence);
        engineId = security.Octets(kOctetString);
        security.Number();
        security.Number();
        user = security.Octets(kOctetString);
        mac = security.Octets(kOctetString);
        macAt = size_t(security.Position() - datagram.data()) - mac.size();
        salt = security.Octets(kOctetString);
        data = message.Whole();
        failed = message.Failed() || header.Failed() || security.Failed() || flagOctet.empty();
    }
    Bytes user;
};

void Device::SetUser(User user) {
    const std::lock_guard<std::mutex> lock(mutex_);
    user_ = user;
    if (user.digest == Digest::kNone) return;
    authKey_ = LocalisedKey(user.digest, kAuthPassword, kEngineId);
    privKey_ = LocalisedKey(user.digest, kPrivPassword, kEngineId);
}

Bytes Device::Message(const V3Request& request, uint8_t flags, const Bytes& scopedPdu) {
    const bool hasMac = flags & kAuthFlag, isPrivate = flags & kPrivFlag;
    const Bytes data =
        isPrivate ? Tlv(kOctetString, Crypted(user_.cipher, privKey_, kSalt, scopedPdu, true))
                  : scopedPdu;
    const Bytes header =
        Tlv(kSequence,
            Join({request.messageId, Integer(65507), Tlv(kOctetString, {flags}), Integer(3)}));
    const auto with = [&](const Bytes& mac) {
        const Bytes security = Join({Tlv(kOctetString, kEngineId), Integer(kBoots), Integer(kTime),
                                     Tlv(kOctetString, request.user), Tlv(kOctetString, mac),
                                     Tlv(kOctetString, isPrivate ? kSalt : Bytes())});
        return Tlv(kSequence,
                   Join({Integer(3), header, Tlv(kOctetString, Tlv(kSequence, security)), data}));
    };
    if (!hasMac) return with({});
    return with(Mac(user_.digest, authKey_, with(Bytes(MacSize(user_.digest)))));
}

// The scoped PDU of the request; empty, with the problem noted, if it cannot be decrypted.
Bytes Device::Decrypted(const V3Request& request, const Bytes& datagram) {
    const uint8_t expected = uint8_t((user_.digest != Digest::kNone ? kAuthFlag : 0) |
                                     (user_.cipher != Cipher::kNone ? kPrivFlag : 0));
    if ((request.flags & 3) != expected) return Nothing("the request has another security level");
    if (expected & kAuthFlag) {
        Bytes zeroed = datagram;
        std::fill_n(zeroed.begin() + std::ptrdiff_t(request.macAt), request.mac.size(), uint8_t{0});
        if (request.mac != Mac(user_.digest, authKey_, zeroed)) {
            return Nothing("the request's HMAC is wrong");
        }
    }
    if (!(expected & kPrivFlag)) return request.data;
    const Bytes cipherText = BerReader(request.data).Octets(kOctetString);
    if (request.salt.size() != 8 || cipherText.empty()) return Nothing("there is no cipher text");
    return Crypted(user_.cipher, privKey_, request.salt, cipherText, false);
}

Bytes Device::AnswerV3(const Bytes& datagram) {
    const V3Request request(datagram);
    if (request.failed) return Nothing("the SNMPv3 request is malformed");
    const bool isEngineDiscovery = request.engineId.empty();
    if (!isEngineDiscovery && request.user != BytesOf(kUserName))
        return Nothing("the user has another name");
    const Bytes scopedPdu = isEngineDiscovery ? request.data : Decrypted(request, datagram);
    BerReader scoped = BerReader(scopedPdu).Enter(kSequence);
    scoped.Octets(kOctetString);
    scoped.Octets(kOctetString);
    Bytes pdu;
    if (isEngineDiscovery) {
        const Bytes requestId = scoped.Enter(scoped.NextTag()).Whole();
        const Bytes counter =
            Join({Tlv(kOid, OidOf(kUnknownEngineIds)), Tlv(kCounter32, {uint8_t{1}})});
        pdu =
            Tlv(kReport,
                Join({requestId, Integer(0), Integer(0), Tlv(kSequence, Tlv(kSequence, counter))}));
    } else {
        pdu = AnswerPdu(scoped, true, false);
    }
    if (pdu.empty()) return problem_.empty() ? Nothing("the PDU is malformed") : Bytes();
    const Bytes answer = Join({Tlv(kOctetString, kEngineId), Tlv(kOctetString, {}), pdu});
    return Message(request, isEngineDiscovery ? uint8_t{0} : uint8_t(request.flags & 3),
                   Tlv(kSequence, answer));
}

}  // namespace check
