// Building and reading messages, and the parts of an authenticated, encrypted exchange.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "lab.h"
#include "snmp/codec/asn.h"
#include "snmp/codec/oid_text.h"
#include "snmp/codec/pdu.h"
#include "snmp/codec/snmp_message.h"
#include "snmpv3/codec/vx_snmpv3.h"
#include "snmpv3/crypto/keys.h"
#include "snmpv3/crypto/privacy.h"
#include "vndiscover.h"

namespace vndiscover {
namespace {

constexpr char kEngineId[] =
    "\x80\x00\x1F\x88\x04"
    "engine";
constexpr char kAuthPassword[] = "authpass1";
constexpr char kPrivPassword[] = "privpass1";
constexpr int32_t kBoots = 3;
constexpr int32_t kTime = 12345;

ByteBuffer BufferOf(const void* bytes, size_t length) {
    ByteBuffer buffer;
    buffer.Assign(static_cast<const uint8_t*>(bytes), static_cast<int32_t>(length));
    return buffer;
}

int32_t BuildV1(uint8_t (&message)[kMaxMessageSize], uint8_t pduType, const ValueView& value) {
    OidValue name;
    ParseOidText(name, kSysName);
    VarBindRecord binding;
    MakeVarBind(name, value, binding);
    VarBindList list;
    SetVarBindList(&binding, 1, list);
    return BuildSnmpMessage(message, sizeof message, "sesame", pduType, kRequestId, list);
}

void EncodeV1(benchmark::State& state) {
    uint8_t message[kMaxMessageSize];
    for (auto _ : state) {
        benchmark::DoNotOptimize(BuildV1(message, kPduGetRequest, {kTagNull, 0, nullptr}));
    }
}
BENCHMARK(EncodeV1)->Repetitions(5);

void DecodeV1(benchmark::State& state) {
    constexpr uint8_t kText[] = "VN LaserPro 410";
    uint8_t message[kMaxMessageSize];
    const auto length =
        static_cast<size_t>(BuildV1(message, 0xA2, {kTagOctetString, sizeof kText - 1, kText}));
    ResponseRecord record = {};
    for (auto _ : state) {
        benchmark::DoNotOptimize(ParseSnmpResponse(record, message, length, kAgent));
    }
    if (record.valueLength != sizeof kText - 1) state.SkipWithError("not read");
}
BENCHMARK(DecodeV1)->Repetitions(5);

// A message of the agent's user shaaes. The libraries are loaded and the passwords hashed, as after
// the first message of a call.
void Prepare(VxSNMPv3& message, bool secured) {
    message.SetUser("shaaes");
    message.SetAuth(kAuthSha1, kAuthPassword);
    message.SetPrivacy(kPrivAes, kPrivPassword);
    message.SetFlags(secured, secured);
    message.SetEngine(BufferOf(kEngineId, sizeof kEngineId - 1), kBoots, kTime);
    message.SetPduType(kPduGetRequest);
    message.SetOid(kSysName);
    message.Encode();
}

// range(0): 1 with authentication and privacy.
void EncodeV3(benchmark::State& state) {
    const CryptoLibraries libraries(kAuthSha1, kPrivAes);
    PasswordKeys keys;
    VxSNMPv3 message(&keys);
    Prepare(message, state.range(0) != 0);
    for (auto _ : state) benchmark::DoNotOptimize(message.Encode().length);
}
BENCHMARK(EncodeV3)->ArgName("authPriv")->Arg(0)->Arg(1)->Repetitions(5);

void DecodeV3(benchmark::State& state) {
    const CryptoLibraries libraries(kAuthSha1, kPrivAes);
    PasswordKeys keys;
    VxSNMPv3 sender(&keys), reader(&keys);
    Prepare(sender, state.range(0) != 0);
    Prepare(reader, state.range(0) != 0);
    const ByteBuffer datagram = sender.Encode();
    std::vector<uint8_t> bytes(datagram.length);
    int32_t read = 0;
    for (auto _ : state) {
        std::memcpy(bytes.data(), datagram.data, bytes.size());  // reading zeroes the HMAC
        read = reader.Decode(bytes.data(), static_cast<int>(bytes.size()));
    }
    if (read == 0 || reader.Bindings().count != 1) state.SkipWithError("not read");
}
BENCHMARK(DecodeV3)->ArgName("authPriv")->Arg(0)->Arg(1)->Repetitions(5);

// Each call loads these once for all of its messages.
void OneLoading(benchmark::State& state) {
    for (auto _ : state) {
        const CryptoLibraries libraries(kAuthSha1, kPrivAes);
        benchmark::DoNotOptimize(&libraries);
    }
}
BENCHMARK(OneLoading)->Repetitions(5);

// The platform's provider, opened by the first hash of every message.
void OneOpening(benchmark::State& state) {
    const CryptoLibraries libraries(kAuthSha1, kPrivAes);
    const ByteBuffer text = BufferOf(kAuthPassword, sizeof kAuthPassword - 1);
    ByteBuffer digest;
    for (auto _ : state) {
        CryptoSession crypto;
        benchmark::DoNotOptimize(crypto.Hash(kAuthSha1, text, digest));
    }
}
BENCHMARK(OneOpening)->Repetitions(5);

void OneKey(benchmark::State& state) {
    CryptoSession crypto;
    const ByteBuffer password = BufferOf(kAuthPassword, sizeof kAuthPassword - 1);
    const ByteBuffer engine = BufferOf(kEngineId, sizeof kEngineId - 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(PasswordKeys().LocalisedKey(crypto, kAuthSha1, password, engine));
    }
}
BENCHMARK(OneKey)->Repetitions(5);

void OneMac(benchmark::State& state) {
    const CryptoLibraries libraries(kAuthSha1, kPrivAes);
    CryptoSession crypto;
    const ByteBuffer key = BufferOf("0123456789abcdefghij", 20);
    ByteBuffer digest;
    crypto.Hash(kAuthSha1, key, digest);  // opens the provider, as the keys do in a message
    const std::vector<uint8_t> message(130, 'x');  // about a request's length
    for (auto _ : state) {
        benchmark::DoNotOptimize(TruncatedHmac(crypto, kAuthSha1, key, message.data(),
                                               static_cast<uint32_t>(message.size())));
    }
}
BENCHMARK(OneMac)->Repetitions(5);

// range(0): 0 encrypts, 1 decrypts.
void OneCipher(benchmark::State& state) {
    CryptoSession crypto;
    const ByteBuffer key = BufferOf("0123456789abcdefghij", 20);
    const std::vector<uint8_t> bytes(48, 'x');
    const ByteBuffer text = BufferOf(bytes.data(), bytes.size());
    const PrivacyInput input = {text, key, kBoots, kTime};
    ByteBuffer out, salt;
    AesPrivacy().Encrypt(input, out, salt);
    for (auto _ : state) {
        if (state.range(0) == 0) {
            AesPrivacy().Encrypt(input, out, salt);
        } else {
            AesPrivacy::Decrypt(input, salt, out);
        }
        benchmark::DoNotOptimize(out.data);
    }
}
BENCHMARK(OneCipher)->ArgName("decrypt")->Arg(0)->Arg(1)->Repetitions(5);

// A whole exchange with the real agent: loading, discovery, request, two keys.
void AuthPrivExchange(benchmark::State& state) {
    for (auto _ : state) {
        char value[VN_REQUEST_VALUE_SIZE];
        uint32_t type = 0;
        const int32_t got =
            GetSnmpRequestV3(kAgent, kSysName, value, sizeof value, &type, 0, 0, L"shaaes", 1,
                             L"authpass1", 1, L"privpass1", VN_AUTH_SHA1, VN_PRIV_AES);
        if (got <= 0) state.SkipWithError("the agent does not answer");
    }
}
BENCHMARK(AuthPrivExchange)->UseRealTime()->Iterations(60)->Repetitions(5);

}  // namespace
}  // namespace vndiscover
