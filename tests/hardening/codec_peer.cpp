// What the module makes of lines on standard input, for differential_test.py. One line out for each
// line in:
//     v1 PDU COMMUNITY OID TAG HEX            the datagram that the codec builds
//     v3 PDU USER AUTH PRIV ENGINE OID        likewise; AUTH and PRIV are protocol codes
//     decode AUTH PRIV ENGINE HEX             the bindings that the version-3 codec reads
//     get HOST OID | next HOST OID | set HOST OID TAG HEX       through VnDiscover.dll
//     getv3 HOST OID USER AUTH PRIV | nextv3 HOST OID USER AUTH PRIV
// Bindings are "OID-HEX TAG VALUE-HEX", numbers decimal, "-" stands for no bytes. Passwords are
// authpass1 and privpass1.
#include <cstdio>
#include <iostream>
#include <sstream>

#include "exports/support/module.h"
#include "helpers/bytes.h"
#include "snmp/codec/snmp_message.h"
#include "snmpv3/codec/vx_snmpv3.h"
#include "snmpv3/crypto/protocol_codes.h"

namespace vndiscover {
namespace {

constexpr char kCommunity[] = "secret";
constexpr char kAuthPassword[] = "authpass1";
constexpr char kPrivPassword[] = "privpass1";
const wchar_t* const kAuthLabels[] = {
    L"", VN_AUTH_MD5, VN_AUTH_SHA1, VN_AUTH_SHA224, VN_AUTH_SHA256, VN_AUTH_SHA384, VN_AUTH_SHA512};
const wchar_t* const kPrivLabels[] = {L"", VN_PRIV_DES, VN_PRIV_AES};

std::string ToHex(const uint8_t* bytes, size_t count) {
    std::string hex;
    for (size_t i = 0; i < count; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
        hex += digits;
    }
    return hex.empty() ? "-" : hex;
}

Bytes FromHex(const std::string& hex) { return hex == "-" ? Bytes() : Hex(hex); }

std::string BindingText(const uint8_t* oid, size_t oidLength, unsigned tag, const uint8_t* value,
                        size_t length) {
    return ToHex(oid, oidLength) + ' ' + std::to_string(tag) + ' ' + ToHex(value, length);
}

class Words {
  public:
    explicit Words(const std::string& line) : line_(line) {}
    std::string Text() {
        std::string word;
        line_ >> word;
        return word;
    }
    uint32_t Number() { return static_cast<uint32_t>(std::stoul(Text())); }
    Bytes Content() { return FromHex(Text()); }

  private:
    std::istringstream line_;
};

std::string BuildV1(Words words) {
    const auto pduType = static_cast<uint8_t>(words.Number());
    const std::string community = words.Text();
    OidValue name;
    ParseOidText(name, words.Text().c_str());
    const auto tag = static_cast<uint8_t>(words.Number());
    const Bytes value = words.Content();
    VarBindRecord binding;
    MakeVarBind(name, {tag, static_cast<int32_t>(value.size()), value.data()}, binding);
    VarBindList list;
    SetVarBindList(&binding, 1, list);
    uint8_t message[kMaxMessageSize];
    const int32_t length =
        BuildSnmpMessage(message, sizeof message, community.c_str(), pduType, kRequestId, list);
    return ToHex(message, static_cast<size_t>(length));
}

void Secure(VxSNMPv3& message, uint32_t auth, uint32_t priv) {
    if (auth != kAuthNone) message.SetAuth(auth, kAuthPassword);
    if (priv != kPrivNone) message.SetPrivacy(priv, kPrivPassword);
    message.SetFlags(auth != kAuthNone, priv != kPrivNone);
}

std::string BuildV3(Words words) {
    VxSNMPv3 message;
    message.SetPduType(static_cast<uint8_t>(words.Number()));
    message.SetUser(words.Text().c_str());
    const uint32_t auth = words.Number();
    Secure(message, auth, words.Number());
    message.SetEngine(ToBuffer(words.Content()), 3, 4711);
    message.SetOid(words.Text().c_str());
    const ByteBuffer& encoded = message.Encode();
    return ToHex(encoded.data, encoded.length);
}

std::string DecodeV3(Words words) {
    VxSNMPv3 message;
    const uint32_t auth = words.Number();
    Secure(message, auth, words.Number());
    message.SetEngine(ToBuffer(words.Content()), 0, 0);
    ExactBlock block(words.Content());
    message.Decode(block.Data(), block.Size());
    std::string text;
    const VarBindList& list = message.Bindings();
    for (int32_t i = 0; i < list.count; ++i) {
        const VarBindRecord& binding = list.bindings[i];
        text +=
            (i == 0 ? "" : " ") + BindingText(binding.name, binding.nameLength, binding.valueTag,
                                              binding.value, binding.valueLength);
    }
    return text;
}

std::string RecordText(const VnResponseRecord& record) {
    return BindingText(record.oid, record.oidLength, record.valueType, record.value,
                       record.valueLength);
}

std::string Ask(const Module& module, const std::string& kind, Words words) {
    const std::string host = words.Text();
    const std::string oid = words.Text();
    VnResponseRecord record = {};
    uint8_t value[VN_REQUEST_VALUE_SIZE] = {};
    uint32_t type = 0;
    if (kind == "next") {
        module.GetNextSnmpRequestRaw(host.c_str(), oid.c_str(), &record, 0, 0, kCommunity, nullptr);
        return RecordText(record);
    }
    if (kind == "get") {
        const int32_t length = module.GetSnmpRequestRaw(
            host.c_str(), oid.c_str(), value, sizeof value, &type, 0, 0, kCommunity, nullptr);
        return std::to_string(type) + ' ' +
               ToHex(value, length > 0 ? static_cast<size_t>(length) : 0);
    }
    if (kind == "set") {
        type = words.Number();
        const Bytes content = words.Content();
        std::copy(content.begin(), content.end(), value);
        const int32_t length = module.SetSnmpRequestRaw(host.c_str(), oid.c_str(), value,
                                                        static_cast<int32_t>(content.size()), &type,
                                                        0, 0, nullptr, kCommunity);
        return std::to_string(type) + ' ' +
               ToHex(value, length > 0 ? static_cast<size_t>(length) : 0);
    }
    const std::string name = words.Text();
    const std::wstring user(name.begin(), name.end());
    const wchar_t* auth = kAuthLabels[words.Number()];
    const wchar_t* priv = kPrivLabels[words.Number()];
    if (kind == "nextv3") {
        module.GetNextSnmpRequestV3(host.c_str(), oid.c_str(), &record, 0, 0, user.c_str(), 1,
                                    L"authpass1", *priv != 0, L"privpass1", auth, priv);
        return RecordText(record);
    }
    module.GetSnmpRequestV3(host.c_str(), oid.c_str(), reinterpret_cast<char*>(value), sizeof value,
                            &type, 0, 0, user.c_str(), 1, L"authpass1", *priv != 0, L"privpass1",
                            auth, priv);
    return std::to_string(type) + ' ' + reinterpret_cast<const char*>(value);
}

std::string Answer(const Module& module, const std::string& line) {
    Words words(line);
    const std::string kind = words.Text();
    if (kind == "v1") return BuildV1(std::move(words));
    if (kind == "v3") return BuildV3(std::move(words));
    if (kind == "decode") return DecodeV3(std::move(words));
    return Ask(module, kind, std::move(words));
}

}  // namespace
}  // namespace vndiscover

int main() {
    const vndiscover::Module module;
    for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::cout << vndiscover::Answer(module, line) << std::endl;
    }
}
