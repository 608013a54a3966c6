// Every kind of malformed answer, through the exports.
#include <cstdio>
#include <cstdlib>

#include "exports/support/lab_test.h"
#include "hardening/directed_calls.h"
#include "hardening/malformed.h"
#include "hardening/quick_waits.h"
#include "helpers/v3_answer.h"

namespace vndiscover {
namespace {

constexpr size_t kLargest = 2048;  // larger datagrams are not read at all

// One of `stride`; all of them where VNDISCOVER_HARDENING_ALL is set.
std::vector<Bytes> Relatives(const Bytes& good, size_t stride) {
    if (std::getenv("VNDISCOVER_HARDENING_ALL")) stride = 1;
    std::vector<Bytes> all;
    size_t number = 0;
    EveryMalformed(good, 29, [&](const Bytes& datagram) {
        if (datagram.size() <= kLargest && !datagram.empty() && number++ % stride == 0) {
            all.push_back(datagram);
        }
    });
    return all;
}

Bytes Report() {
    V3Datagram report;
    report.scopedTlv =
        ScopedPduTlv(0xA8, BindingTlv(Hex("2b 06 01 06 03 0f 01 01 04 00"), Tlv(0x41, {0x05})));
    return report.Build();
}

class MalformedAnswers : public LabTest {
  protected:
    QuickWaits waits{module};
    DirectedCalls calls{module, "10.77.1.2"};
};

TEST_F(MalformedAnswers, ToRequestsWithACommunity) {
    Bytes next;
    Devices([&](const Request&) { return std::vector<Answer>{{next}}; });
    int number = 0;
    for (const Bytes& datagram : Relatives(SnmpText("Model 1"), 1)) {
        next = datagram;
        calls.CallV1(number++ % DirectedCalls::kKindsV1);
        ASSERT_FALSE(HasFailure()) << "answer " << number;
    }
    std::printf("directed v1: %d answers\n", number);
    next = SnmpText("Model 1");
    calls.ExpectGood("Model 1");
}

TEST_F(MalformedAnswers, ToSweeps) {
    const std::vector<Bytes> relatives = Relatives(SnmpText("Model 1"), 1);
    std::vector<Answer> answers;
    for (const Bytes& datagram : relatives) answers.push_back({datagram});
    answers.push_back({SnmpText("behind")});
    DeviceIn("neta", answers);
    Sweep();
    std::printf("sweep: %zu answers\n", relatives.size());
    ASSERT_EQ(relatives.size() + 2, window.results.size());
    EXPECT_EQ("10.77.1.2=behind", window.Texts()[relatives.size()]);
    EXPECT_TRUE(window.results.back().isEnd);
}

TEST_F(MalformedAnswers, ToRequestsOfVersion3) {
    const Bytes report = Report();
    const Bytes answer = V3Datagram().Build();
    const Bytes *first = nullptr, *second = nullptr;
    int asked = 0;
    Devices([&](const Request&) { return std::vector<Answer>{{asked++ == 0 ? *first : *second}}; });
    int number = 0;
    const auto exchange = [&](const Bytes& one, const Bytes& other) {
        first = &one;
        second = &other;
        asked = 0;
        calls.CallV3(number++ % 2);
    };
    for (const Bytes& datagram : Relatives(answer, 6)) exchange(report, datagram);
    for (const Bytes& datagram : Relatives(report, 6)) exchange(datagram, answer);
    std::printf("directed v3: %d exchanges\n", number);
    char value[256] = {};
    first = &report;
    second = &answer;
    asked = 0;
    EXPECT_GT(module.GetSnmpRequestV3("10.77.1.2", kSysName, value, 256, nullptr, 0, 0, L"user", 0,
                                      nullptr, 0, nullptr, nullptr, nullptr),
              0);
    EXPECT_STREQ("value", value);
}

}  // namespace
}  // namespace vndiscover
