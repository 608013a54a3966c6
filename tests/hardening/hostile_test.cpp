// Devices answer every kind of call with malformed variants of good answers: each answer that
// arrives is delivered, no buffer is overrun, and afterwards the module works as before. A seed
// determines all of it: VNDISCOVER_HOSTILE_SEED, or a different one each time.
// VNDISCOVER_HOSTILE_ANSWERS is the number of answers.
#include <cstdio>
#include <cstdlib>
#include <random>

#include "exports/support/v3_test.h"

namespace vndiscover {
namespace {

constexpr size_t kLargest = 2048;  // bytes of a receive
constexpr char kHost[] = "10.77.1.2";

uint32_t Setting(const char* name, uint32_t otherwise) {
    const char* text = std::getenv(name);
    return text ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

class HostileNetwork : public V3Test {
  protected:
    HostileNetwork() : V3Test(false) {
        Devices([this](const Request& request) {
            if (request.net != "neta") return Answers();
            const std::vector<Bytes> good = GoodAnswers(request.data);
            const bool isToEverybody = request.local == "255.255.255.255" || request.port != 161;
            return isToEverybody ? Burst(good) : Single(good);
        });
    }

    size_t Below(size_t limit) { return random_() % limit; }
    uint8_t TagOrLength() {
        static constexpr uint8_t kBytes[] = {0x00, 0x01, 0x02, 0x04, 0x05, 0x06, 0x24, 0x30,
                                             0x40, 0x41, 0x43, 0x46, 0x7F, 0x80, 0x81, 0x82,
                                             0x84, 0x88, 0xA0, 0xA2, 0xA3, 0xA8, 0xFE, 0xFF};
        return kBytes[Below(sizeof kBytes)];
    }
    Bytes Mutated(Bytes data) {
        for (size_t changes = 1 + Below(4) * Below(2); changes > 0; --changes) {
            if (data.empty()) data = {0x30};
            size_t at = Below(data.size());
            const size_t kind = Below(8);
            Bytes added(kind == 0 ? 1 + Below(2) * Below(400) : kind == 1 ? Below(100) : 0);
            for (uint8_t& byte : added) byte = kind == 0 ? TagOrLength() : random_() & 0xFF;
            if (kind == 2) added = data;
            if (kind == 3) data[at] ^= static_cast<uint8_t>(1 << Below(8));
            if (kind == 4 || kind == 5) data[at] = TagOrLength();
            if (kind == 6) data.resize(at);
            // About as large as a receive.
            if (kind == 7) data.resize(at = kLargest - 4 + Below(9), TagOrLength());
            data.insert(data.begin() + static_cast<std::ptrdiff_t>(at), added.begin(), added.end());
        }
        return data;
    }
    static std::vector<Bytes> GoodAnswers(const Bytes& request) {
        if (request[0] != 0x30) return {TextBytes("<s:Envelope><s:Body/></s:Envelope>")};
        if (request[4] == 0) {
            return {SnmpText("Model 1"), SnmpAnswer(kSysName, 2, {0x7F}),
                    SnmpText(std::string(127, 'x'))};
        }
        if (request == V3Discovery()) return {V3Report()};
        V3Datagram secured = V3AnswerFields({});
        secured.flagsTlv = Tlv(0x04, {3});
        secured.macTlv = Tlv(0x04, Bytes(12, 0xAA));
        secured.salt = Bytes(8, 0x55);
        secured.scopedTlv = Tlv(0x04, Bytes(64, 0x77));
        return {V3Text("Model 1"), secured.Build()};
    }
    // With good reports, an exchange reaches its second half.
    Bytes Malformed(const std::vector<Bytes>& good) {
        ++count_;
        const Bytes& base = good[Below(good.size())];
        return base == V3Report() && Below(10) < 7 ? base : Mutated(base);
    }
    static bool IsTaken(const Bytes& data) { return !data.empty() && data.size() <= kLargest; }
    // A datagram that is not received uses up an attempt of a directed request.
    Answers Single(const std::vector<Bytes>& good) {
        single_ = isGood_ ? good[0] : Malformed(good);
        if (!IsTaken(single_)) single_ = good[0];
        return {{single_}};
    }
    // One answer from each device, the last of them good.
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

    // Every answer is delivered with its sender, then the final message.
    void ExpectAllTaken(const ResultWindow& deliveries) {
        ASSERT_EQ(taken_.size() + 1, deliveries.results.size());
        EXPECT_TRUE(deliveries.results.back().isEnd);
        for (size_t i = 0; i < taken_.size(); ++i) {
            ASSERT_EQ(taken_[i].from, deliveries.results[i].address) << ToHex(taken_[i].data);
        }
    }
    void SweepForEverything() {
        burst_ = 1500;
        Sweep();
        ExpectAllTaken(window);
        window.results.clear();
        burst_ = 40;
        SweepFor(L"{\"GET\":{\".1.3.6.1.2.1.1.5.0\":\"\",\".1.3.6.1.2.1.1.6.0\":\"\"}}");
        ASSERT_THAT(window.results, SizeIs(AllOf(Ge(1u), Le(taken_.size() + 1))));
        EXPECT_TRUE(window.results.back().isEnd);
        window.results.clear();
        burst_ = 60;
        const size_t before = Requests().size();
        SweepV3(window);
        EXPECT_EQ(before + 2 + taken_.size(), Requests().size())
            << "two adapters, and every sender";
        for (const Result& result : window.results) EXPECT_NE("", result.value);
        window.results.clear();
        burst_ = 600;
        module.DiscoverSoap(replies.Handle(), replies.kMessage, 1000, probe.Text(), probe.Size());
        ExpectAllTaken(replies);
        for (size_t i = 0; i < taken_.size(); ++i) {
            taken_[i].data.resize(VN_SOAP_REPLY_SIZE);
            ASSERT_EQ(taken_[i].data, replies.results[i].buffer);
        }
        replies.results.clear();
    }

    void ExpectLength(int32_t length) const {
        EXPECT_THAT(length, AllOf(Ge(isGood_ ? 7 : 0), Le(isGood_ ? 7 : 255)));
    }
    void ExpectRecord(size_t largestOid, int32_t largestValue) const {
        VnResponseRecord next;
        std::memcpy(&next, record.Content().data(), sizeof next);
        EXPECT_LE(next.oidLength, largestOid);
        EXPECT_LE(next.valueLength, largestValue);
        EXPECT_STREQ(kHost, next.address);
        EXPECT_THAT(next.reserved, Each(GuardedBuffer::kFill));
        EXPECT_TRUE(record.FrontStands());
    }
    void AskDirectly() {
        uint32_t type = 0;
        int32_t length = module.GetSnmpRequestRaw(kHost, kDefaultOid, value.Fresh(), 256, &type, 0,
                                                  0, nullptr, nullptr);
        ExpectLength(length);
        EXPECT_TRUE(value.IsUntouched(length == 0 ? 0 : length + 1u));
        for (const uint32_t expected : {VN_TYPE_INTEGER, VN_TYPE_OCTET_STRING}) {
            length = module.GetSnmpRequest(kHost, kDefaultOid, value.Fresh<char>(), 256, expected,
                                           0, 0, nullptr, nullptr);
            const size_t digits = 12;  // "-2147483648"
            EXPECT_TRUE(value.IsUntouched(length == 0 ? 0 : std::max(length + size_t{1}, digits)));
        }
        auto* next = record.Fresh<VnResponseRecord>();
        length = module.GetNextSnmpRequestRaw(kHost, kDefaultOid, next, 0, 0, nullptr, nullptr);
        ExpectLength(length);
        ExpectRecord(VN_OID_SIZE, length);
        ExpectLength(module.SetSnmpRequestRaw(kHost, kDefaultOid, toSet.Fresh(), 100, &type, 0, 0,
                                              nullptr, nullptr));
        EXPECT_TRUE(toSet.FrontStands());
        value.Fresh<char>()[0] = '\0';
        next = record.Fresh<VnResponseRecord>();
        next->oidLength = next->valueLength = 0;
        user.Ask([&](auto... security) {
            module.GetSnmpRequestV3(kHost, kDefaultOid, value.Text(), 256, nullptr, 0, 0,
                                    security...);
            return module.GetNextSnmpRequestV3(kHost, kDefaultOid, next, 0, 0, security...);
        });
        EXPECT_LE(strnlen(value.Text(), 256), 126u);
        EXPECT_TRUE(!isGood_ || value.Text() == std::string("Model 1"));
        ExpectRecord(124, 126);
    }

    const uint32_t seed_ = Setting("VNDISCOVER_HOSTILE_SEED", std::random_device()());
    std::mt19937 random_{seed_};
    ResultWindow replies{VN_SOAP_REPLY_SIZE};
    GuardedBuffer value{VN_REQUEST_VALUE_SIZE}, record{sizeof(VnResponseRecord)}, toSet{100};
    GuardedBuffer probe{40};
    int burst_ = 0;
    bool isGood_ = false;
    Answers taken_;  // of the last burst
    Bytes single_;   // the last answer to a directed request
    size_t count_ = 0;
};

TEST_F(HostileNetwork, MalformedAnswersAffectNothingElse) {
    std::printf("VNDISCOVER_HOSTILE_SEED=%u\n", seed_);
    std::fflush(stdout);
    const uint32_t wanted = Setting("VNDISCOVER_HOSTILE_ANSWERS", 20000);
    for (int round = 0; count_ < wanted; ++round) {
        user.useAuth = round % 3 != 0;
        user.usePriv = round % 3 == 2;
        SweepForEverything();
        for (int i = 0; i < 15 && !HasFailure(); ++i) AskDirectly();
        ASSERT_FALSE(HasFailure()) << ToHex(single_);
    }
    isGood_ = true;
    user.useAuth = user.usePriv = 0;
    AskDirectly();
    EXPECT_TRUE(probe.FrontStands());
}

}  // namespace
}  // namespace vndiscover
