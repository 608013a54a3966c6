// SNMPv3 datagrams as an agent sends them, built from RFC 3412 and RFC 3414 without the code under
// test but for its hashes.
#pragma once

#include "helpers/bytes.h"
#include "snmpv3/crypto/crypto.h"
#include "snmpv3/crypto/protocol_codes.h"

namespace vndiscover {

inline Bytes IntegerTlv(uint32_t value) {
    Bytes content;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<uint8_t>(value >> shift);
        if (!content.empty() || byte != 0 || shift == 0) content.push_back(byte);
    }
    return Tlv(0x02, content[0] >= 0x80 ? Bytes{0} + content : content);
}

inline Bytes BindingTlv(const Bytes& oidContent, const Bytes& valueTlv) {
    return Tlv(0x30, Tlv(0x06, oidContent) + valueTlv);
}

inline const Bytes& SysNameOid() {
    static const Bytes oid = Hex("2b 06 01 02 01 01 05 00");
    return oid;
}

inline Bytes ScopedPduTlv(uint8_t pduTag, const Bytes& bindings,
                          const Bytes& contextEngineId = {}) {
    return Tlv(0x30, Tlv(0x04, contextEngineId) + Tlv(0x04, {}) +
                         Tlv(pduTag, IntegerTlv(257) + IntegerTlv(0) + IntegerTlv(0) +
                                         Tlv(0x30, bindings)));
}

// A response with sysName as OCTET STRING.
inline Bytes ScopedTextTlv(const std::string& text) {
    return ScopedPduTlv(0xA2, BindingTlv(SysNameOid(), Tlv(0x04, TextBytes(text))));
}

struct V3Datagram {
    uint32_t msgId = 256;
    uint32_t msgMaxSize = 65507;
    Bytes flagsTlv = Tlv(0x04, {0x00});
    uint32_t securityModel = 3;
    Bytes engineId = Hex("80 00 17 4b 05 01 02 03 04");
    uint32_t boots = 7;
    uint32_t time = 70000;
    Bytes user = TextBytes("user");
    Bytes macTlv = Tlv(0x04, {});  // the authentication parameters
    Bytes salt;
    Bytes scopedTlv = ScopedTextTlv("value");  // or the OCTET STRING of it encrypted

    Bytes Content() const {
        const Bytes header = Tlv(0x30, IntegerTlv(msgId) + IntegerTlv(msgMaxSize) + flagsTlv +
                                           IntegerTlv(securityModel));
        const Bytes usm = Tlv(0x30, Tlv(0x04, engineId) + IntegerTlv(boots) + IntegerTlv(time) +
                                        Tlv(0x04, user) + macTlv + Tlv(0x04, salt));
        return IntegerTlv(3) + header + Tlv(0x04, usm) + scopedTlv;
    }
    Bytes Build() const { return Tlv(0x30, Content()); }

    // The datagram with its HMAC in place, cut to size where that is given.
    Bytes BuildAuthenticated(CryptoSession& crypto, uint32_t authCode, const ByteBuffer& key,
                             uint32_t size = 0) {
        if (size == 0) size = MacLength(authCode);
        macTlv = Tlv(0x04, Bytes(size, 0));
        const Bytes unsigned_ = Build();
        ByteBuffer mac;
        crypto.Hmac(authCode, key, unsigned_.data(), static_cast<uint32_t>(unsigned_.size()), mac);
        macTlv = Tlv(0x04, Prefix(ToBytes(mac), size));
        return Build();
    }
};

}  // namespace vndiscover
