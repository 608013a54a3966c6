// What the decoders make of every malformed relative of a good answer. Each lies in a heap block of
// exactly its size, so that the sanitizers of the native build see a read beyond its end.
#include "hardening/malformed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "helpers/v3_answer.h"
#include "snmp/codec/asn_decode.h"
#include "snmp/codec/snmp_message.h"
#include "snmpv3/codec/message_reader.h"
#include "snmpv3/crypto/keys.h"
#include "snmpv3/crypto/privacy.h"

namespace vndiscover {
namespace {

// All of it is for the sanitizers of the native build; a part also runs as the code is shipped.
#ifdef _WIN32
constexpr int kNestingStep = 50;
constexpr bool kPartOnly = true;
#else
constexpr int kNestingStep = 1;
constexpr bool kPartOnly = false;
#endif

void Report(const char* what, int count) { std::printf("%s: %d datagrams\n", what, count); }

Bytes AnswerV1(const Bytes& bindings) {
    return Tlv(0x30, Tlv(0x02, {0}) + Tlv(0x04, TextBytes("sesame")) +
                         Tlv(0xA2, Tlv(0x02, {1}) + Tlv(0x02, {0}) + Tlv(0x02, {0}) +
                                       Tlv(0x30, bindings)));
}

TEST(Malformed, V1AnswersStayWithinTheirRecord) {
    const Bytes one = BindingTlv(SysNameOid(), Tlv(0x04, TextBytes("Model 1")));
    const Bytes number = BindingTlv(SysNameOid(), Tlv(0x02, {0x7F}));
    int count = 0;
    for (const Bytes& good : {AnswerV1(one), AnswerV1(one + number + one)}) {
        ResponseRecord sound = {};
        ASSERT_GT(ParseSnmpResponse(sound, good.data(), good.size(), "10.77.1.2"), 0);
        count += EveryMalformed(good, kNestingStep, [](const Bytes& datagram) {
            ResponseRecord record = {};
            ExactBlock block(datagram);
            ParseSnmpResponse(record, block.Data(), datagram.size(), "10.77.1.2");
            ASSERT_LE(record.valueLength, 255);
            ASSERT_LE(record.nameLength, kNameSize);
            ASSERT_STREQ("10.77.1.2", record.address);
            ASSERT_EQ(0, std::count_if(record.value + 256, std::end(record.value),
                                       [](uint8_t byte) { return byte != 0; }));
        });
    }
    Report("v1 answers", count);
}

struct Protocols {
    uint32_t auth;
    uint32_t priv;
};

// A reader with the keys of one user at the engine of a V3Datagram.
class V3Reader {
  public:
    explicit V3Reader(Protocols protocols) : protocols_(protocols) {
        answer_.flagsTlv = Tlv(0x04, {static_cast<uint8_t>((protocols.auth != kAuthNone ? 1 : 0) |
                                                           (protocols.priv != kPrivNone ? 2 : 0))});
        if (protocols.auth == kAuthNone) return;
        keys_.auth = PasswordToKey(crypto_, protocols.auth, ToBuffer(TextBytes("authpass1")),
                                   ToBuffer(answer_.engineId));
        keys_.priv = keys_.auth;
    }

    // The datagram around a scoped PDU, encrypted and with its MAC in place as the protocols ask.
    Bytes Wrap(const Bytes& scopedTlv) {
        answer_.scopedTlv = scopedTlv;
        if (protocols_.priv != kPrivNone) Encrypt(scopedTlv);
        return protocols_.auth == kAuthNone
                   ? answer_.Build()
                   : answer_.BuildAuthenticated(crypto_, protocols_.auth, keys_.auth);
    }

    // The count of bindings, or -1 where the datagram does not decode.
    int Read(const Bytes& datagram) {
        MessageRecord message;
        message.usm.engineId = ToBuffer(answer_.engineId);
        message.usm.authProtocol = protocols_.auth;
        message.usm.privProtocol = protocols_.priv;
        message.authFlag = protocols_.auth != kAuthNone;
        message.privFlag = protocols_.priv != kPrivNone;
        ExactBlock block(datagram);
        try {
            const int32_t length = ReadMessage(message, keys_, crypto_, block.Data(), block.Size());
            EXPECT_GT(length, 0);
            EXPECT_LE(length, block.Size());
        } catch (const AsnDecodeError&) {
            return -1;
        }
        const VarBindList& list = message.scoped.pdu.bindings;
        for (int32_t i = 0; i < list.count; ++i) CheckBinding(list.bindings[i]);
        return list.count;
    }

  private:
    void Encrypt(const Bytes& scopedTlv) {
        const ByteBuffer text = ToBuffer(scopedTlv);
        const PrivacyInput input = {text, keys_.priv, static_cast<int32_t>(answer_.boots),
                                    static_cast<int32_t>(answer_.time)};
        ByteBuffer cipher, salt;
        if (protocols_.priv == kPrivDes) {
            DesPrivacy().Encrypt(crypto_, input, cipher, salt);
        } else {
            AesPrivacy().Encrypt(input, cipher, salt);
        }
        answer_.scopedTlv = Tlv(0x04, ToBytes(cipher));
        answer_.salt = ToBytes(salt);
    }

    static void CheckBinding(const VarBindRecord& binding) {
        EXPECT_LE(binding.nameLength, kMaxNameContent);
        EXPECT_LE(binding.valueLength, kMaxValueContent);
        std::string text;
        try {
            VarBindValueToText(binding, text);
        } catch (const AsnDecodeError&) {
        }
        EXPECT_LE(text.size(), static_cast<size_t>(kMaxValueContent));
    }

    Protocols protocols_;
    V3Datagram answer_;
    CryptoSession crypto_;
    MessageKeys keys_;
};

TEST(Malformed, V3AnswersStayWithinTheirBindings) {
    int count = 0;
    for (const Protocols protocols :
         {Protocols{kAuthNone, kPrivNone}, {kAuthSha1, kPrivNone}, {kAuthSha512, kPrivAes}}) {
        if (kPartOnly && protocols.auth != kAuthNone) continue;
        V3Reader reader(protocols);
        const Bytes good = reader.Wrap(ScopedTextTlv("value"));
        ASSERT_EQ(1, reader.Read(good));
        const int step = protocols.auth == kAuthNone ? kNestingStep : 97;
        count += EveryMalformed(good, step, [&](const Bytes& datagram) { reader.Read(datagram); });
    }
    Report("v3 answers", count);
}

// Malformed before they were encrypted and signed, as a device that knows the keys can send them.
TEST(Malformed, V3PlainTextsStayWithinTheirBindings) {
    int count = 0;
    for (const Protocols protocols : {Protocols{kAuthMd5, kPrivDes}, {kAuthSha256, kPrivAes}}) {
        if (kPartOnly && protocols.priv == kPrivDes) continue;
        V3Reader reader(protocols);
        const Bytes good = ScopedTextTlv("value");
        ASSERT_EQ(1, reader.Read(reader.Wrap(good)));
        count += EveryMalformed(good, 47,
                                [&](const Bytes& scoped) { reader.Read(reader.Wrap(scoped)); });
    }
    Report("v3 plain texts", count);
}

}  // namespace
}  // namespace vndiscover
