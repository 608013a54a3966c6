// Devices that answer every kind of call with something malformed. All of it follows from one seed:
// VNDISCOVER_HOSTILE_SEED, or another one each time. VNDISCOVER_HOSTILE_ANSWERS: how many answers.
#include <cstdio>
#include <cstdlib>

#include "exports/support/network_test.h"
#include "hardening/mutator.h"
#include "helpers/guarded_buffer.h"

namespace vndiscover {
namespace {

constexpr size_t kLargest = 2048;  // of what a receive takes
constexpr char kHost[] = "10.77.1.2";
constexpr wchar_t kJson[] = L"{\"GET\":{\".1.3.6.1.2.1.1.5.0\":\"\",\".1.3.6.1.2.1.1.6.0\":\"\"}}";

uint32_t Setting(const char* name, uint32_t otherwise) {
    const char* text = std::getenv(name);
    return text ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

// What the fixed layout makes of an SNMPv1 answer, whose end is followed by zeros.
struct Reading {
    explicit Reading(Bytes in) {
        in.resize(in.size() + kLargest);
        size_t at = 1;
        const auto takeLength = [&] {
            if (in[at] == 0x82 && in[at + 1] == 0) at += 2;
            return in[at++];
        };
        const auto takeContent = [&] {
            const auto content = in.begin() + static_cast<std::ptrdiff_t>(at) + 2;
            const Bytes taken(content, content + in[at + 1]);
            at += 2 + taken.size();
            return taken;
        };
        if (in[0] != 0x30) return;
        const size_t end = takeLength();
        at += 3;                            // version
        if (in[at] == 0x04) takeContent();  // community
        if (in[at] < 0xA0 || in[at++] > 0xA7) return;
        takeLength();
        at += 9;  // request-id, error-status, error-index
        if (in[at++] != 0x30) return;
        takeLength();
        while (at < end && in[at++] == 0x30) {
            takeLength();
            if (in[at] != 0x06) return;
            oid = takeContent();
            oid.resize(std::min<size_t>(oid.size(), VN_OID_SIZE));
            type = in[at];
            value = takeContent();
        }
    }
    int32_t Length() const { return static_cast<int32_t>(value.size()); }
    std::string Text() const { return std::string(value.begin(), value.end()).c_str(); }
    // Kept: without sign extension.
    std::string Number() const {
        uint32_t number = 0;
        for (const uint8_t byte : value) number = number << 8 | byte;
        return std::to_string(static_cast<int32_t>(number));
    }

    Bytes oid, value;
    uint32_t type = 0;
};

class HostileNetwork : public NetworkTest {
  protected:
    HostileNetwork() : NetworkTest(false) {
        Devices([this](const Request& request) {
            if (request.net != "neta") return Answers();
            const std::vector<Bytes> good = GoodAnswers(request.data);
            const bool isToEverybody = request.local == "255.255.255.255" || request.port != 161;
            return isToEverybody ? Burst(good) : Single(good);
        });
    }

    static std::vector<Bytes> GoodAnswers(const Bytes& request) {
        if (request[0] != 0x30) return {TextBytes("<s:Envelope><s:Body/></s:Envelope>")};
        if (request[4] == 0) {
            return {SnmpText("Model 1"), SnmpAnswer(kSysName, 2, {0x7F}),
                    SnmpText(std::string(127, 'x')), SnmpText("a longer one than the others")};
        }
        if (request == V3Probe()) return {V3Report()};
        V3Datagram secured = V3AnswerFields({});
        secured.flagsTlv = Tlv(0x04, {3});
        secured.macTlv = Tlv(0x04, Bytes(12, 0xAA));
        secured.salt = Bytes(8, 0x55);
        secured.scopedTlv = Tlv(0x04, Bytes(64, 0x77));
        return {V3Text("Model 1"), V3AnswerFields(Hex("02 06 00 00 00 00 00 01")).Build(),
                secured.Build()};
    }
    // Good reports let an exchange go on to its second half.
    Bytes Malformed(const std::vector<Bytes>& good) {
        ++count_;
        const Bytes& base = good[mutator_.Below(good.size())];
        return base == V3Report() && mutator_.Below(10) < 7 ? base : mutator_.Mutated(base);
    }
    static bool IsTaken(const Bytes& data) { return !data.empty() && data.size() <= kLargest; }
    // What is not taken costs a directed request an attempt.
    Answers Single(const std::vector<Bytes>& good) {
        single_ = isGood_ ? good[0] : Malformed(good);
        if (!IsTaken(single_)) single_ = good[0];
        return {{single_}};
    }
    // One of each device, the last of them good.
    Answers Burst(const std::vector<Bytes>& good) {
        Answers answers;
        taken_.clear();
        for (int i = 0; i <= burst_; ++i) {
            const std::string from =
                "10.99." + std::to_string(i / 250) + '.' + std::to_string(i % 250);
            answers.push_back({i < burst_ ? Malformed(good) : good[0], from});
            if (IsTaken(answers.back().data)) taken_.push_back(answers.back());
        }
        return answers;
    }

    // Every answer is delivered with the value that can be read.
    void SweepV1() {
        burst_ = 1500;
        Sweep();
        ASSERT_EQ(taken_.size() + 1, window.results.size());
        const Lines texts = window.Texts();
        for (size_t i = 0; i < taken_.size(); ++i) {
            const Answer& answer = taken_[i];
            ASSERT_EQ(answer.from + '=' + Reading(answer.data).Text(), texts[i])
                << ToHex(answer.data);
        }
    }
    // Who has a value is asked further, and delivered whatever comes back.
    void SweepJson() {
        burst_ = 40;
        SweepFor(kJson);
        Lines expected, delivered;
        for (const Answer& answer : taken_) {
            if (!Reading(answer.data).Text().empty()) expected.push_back(answer.from);
        }
        for (const Result& result : window.results) delivered.push_back(result.address);
        expected.push_back("");
        EXPECT_EQ(expected, delivered);
    }
    void SweepV3() {
        burst_ = 60;
        const size_t before = Requests().size();
        AsUser([&](auto... security) {
            return module.DiscoverSnmpV3(window.Handle(), window.kMessage, 0, 0, security...);
        });
        EXPECT_EQ(before + 2 + taken_.size(), Requests().size())
            << "two adapters, and every sender";
        for (const Result& result : window.results) EXPECT_NE("", result.value);
    }
    void SweepWsd() {
        burst_ = 600;
        module.DiscoverSoap(replies.Handle(), replies.kMessage, 1000, probe.Text(), probe.Size());
        ASSERT_EQ(taken_.size() + 1, replies.results.size());
        for (size_t i = 0; i < taken_.size(); ++i) {
            taken_[i].data.resize(VN_SOAP_REPLY_SIZE);
            ASSERT_EQ(taken_[i].data, replies.results[i].buffer);
            ASSERT_EQ(taken_[i].from, replies.results[i].address);
        }
    }

    template <class Call>
    int32_t AsUser(Call&& call) const {
        return call(L"user", useAuth_, L"authpass1", usePriv_, L"privpass1", VN_AUTH_SHA1,
                    VN_PRIV_AES);
    }
    // A fresh buffer into which these bytes have been written, and nothing else.
    static void ExpectWritten(const GuardedBuffer& buffer, Bytes bytes) {
        bytes.resize(static_cast<size_t>(buffer.Size()), GuardedBuffer::kFill);
        EXPECT_EQ(bytes, buffer.Content());
        EXPECT_TRUE(buffer.FrontStands());
    }
    void GetRaw() {
        uint32_t type = 0;
        const int32_t length = module.GetSnmpRequestRaw(kHost, kDefaultOid, value.Fresh(), 256,
                                                        &type, 0, 0, nullptr, nullptr);
        const Reading read(single_);
        EXPECT_EQ(read.Length(), length);
        EXPECT_EQ(read.type, type);
        ExpectWritten(value, length == 0 ? Bytes() : read.value + Bytes{0});
    }
    void GetText(uint32_t type) {
        const int32_t length = module.GetSnmpRequest(kHost, kDefaultOid, value.Fresh<char>(), 256,
                                                     type, 0, 0, nullptr, nullptr);
        const Reading read(single_);
        EXPECT_EQ(read.type == type ? read.Length() : 0, length);
        const std::string text = type == VN_TYPE_INTEGER ? read.Number() : read.Text();
        ExpectWritten(value, length == 0 ? Bytes() : TextBytes(text) + Bytes{0});
    }
    void GetNext() {
        auto& next = *record.Fresh<VnResponseRecord>();
        const int32_t length =
            module.GetNextSnmpRequestRaw(kHost, kDefaultOid, &next, 0, 0, nullptr, nullptr);
        const Reading read(single_);
        EXPECT_EQ(read.Length(), length);
        EXPECT_EQ(read.type, next.valueType);
        EXPECT_EQ(read.value, Bytes(next.value, next.value + next.valueLength));
        EXPECT_EQ(read.oid, Bytes(next.oid, next.oid + next.oidLength));
        CheckRecord(next);
    }
    void CheckRecord(const VnResponseRecord& next) {
        EXPECT_STREQ(kHost, next.address);
        for (const uint8_t byte : next.reserved) EXPECT_EQ(GuardedBuffer::kFill, byte);
        EXPECT_TRUE(record.FrontStands());
    }
    // An answer that is longer than the value that was set is not written.
    void Set() {
        uint32_t type = VN_TYPE_OCTET_STRING;
        const int32_t length = module.SetSnmpRequestRaw(kHost, kDefaultOid, toSet.Fresh(), 100,
                                                        &type, 0, 0, nullptr, nullptr);
        const Reading read(single_);
        EXPECT_EQ(read.Length(), length);
        EXPECT_EQ(read.type, type);
        ExpectWritten(toSet, length > 100 ? Bytes(100, 0) : read.value);
    }
    void GetV3() {
        value.Fresh<char>()[0] = '\0';
        AsUser([&](auto... security) {
            return module.GetSnmpRequestV3(kHost, kDefaultOid, value.Text(), 256, nullptr, 0, 0,
                                           security...);
        });
        EXPECT_LE(strnlen(value.Text(), 256), 126u);
        EXPECT_TRUE(!isGood_ || value.Text() == std::string("Model 1"));
        auto& next = *record.Fresh<VnResponseRecord>();
        next.oidLength = next.valueLength = 0;
        AsUser([&](auto... security) {
            return module.GetNextSnmpRequestV3(kHost, kDefaultOid, &next, 0, 0, security...);
        });
        EXPECT_LE(next.valueLength, 126);
        EXPECT_LE(next.oidLength, 124);
        CheckRecord(next);
    }
    void AskDirectly() {
        GetRaw();
        GetText(VN_TYPE_INTEGER);
        GetText(VN_TYPE_OCTET_STRING);
        GetNext();
        Set();
        GetV3();
    }
    static void ExpectEndAndForget(ResultWindow& window) {
        EXPECT_TRUE(!window.results.empty() && window.results.back().isEnd);
        window.results.clear();
    }

    const uint32_t seed_ = Setting("VNDISCOVER_HOSTILE_SEED", std::random_device()());
    Mutator mutator_{seed_};
    ResultWindow replies{VN_SOAP_REPLY_SIZE};
    GuardedBuffer value{VN_REQUEST_VALUE_SIZE}, record{sizeof(VnResponseRecord)}, toSet{100};
    GuardedBuffer probe{40};
    BYTE useAuth_ = 0, usePriv_ = 0;
    int burst_ = 0;
    bool isGood_ = false;
    Answers taken_;  // of the last burst
    Bytes single_;   // the last answer to a directed request
    size_t count_ = 0;
};

TEST_F(HostileNetwork, ChangesNothingButItsOwnAnswers) {
    std::printf("VNDISCOVER_HOSTILE_SEED=%u\n", seed_);
    std::fflush(stdout);
    const uint32_t wanted = Setting("VNDISCOVER_HOSTILE_ANSWERS", 20000);
    for (int round = 0; count_ < wanted; ++round) {
        useAuth_ = round % 3 != 0;
        usePriv_ = round % 3 == 2;
        SweepV1();
        ExpectEndAndForget(window);
        SweepJson();
        ExpectEndAndForget(window);
        SweepV3();
        window.results.clear();
        SweepWsd();
        ExpectEndAndForget(replies);
        for (int i = 0; i < 15 && !HasFailure(); ++i) AskDirectly();
        ASSERT_FALSE(HasFailure()) << ToHex(single_);
    }
    isGood_ = true;
    useAuth_ = usePriv_ = 0;
    AskDirectly();
    EXPECT_TRUE(probe.FrontStands());
}

}  // namespace
}  // namespace vndiscover
