// What directed requests give and log where no answer comes.
#include "exports/support/guarded_buffer.h"
#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::Not;
using testing::SizeIs;

constexpr char kHost[] = "10.77.1.11";
const char kSilence[] = "RecvFrom - Timeout\n";

// The five exports for one host, OID and community, each with what it must leave alone.
class AllDirected {
  public:
    explicit AllDirected(const Module& module) : module_(module) {}

    std::vector<int32_t> Call(const char* host, const char* oid, const char* community) {
        return {module_.GetSnmpInformation(host, text.Text(), community, community),
                module_.GetSnmpRequest(host, oid, text.Text(), text.Size(), 4, 0, 0, community,
                                       community),
                module_.GetSnmpRequestRaw(host, oid, raw.Data(), raw.Size(), &type, 0, 0, community,
                                          community),
                module_.GetNextSnmpRequestRaw(host, oid,
                                              reinterpret_cast<VnResponseRecord*>(record.Data()), 0,
                                              0, community, community),
                module_.SetSnmpRequestRaw(host, oid, set.Data(), set.Size(), &type, 0, 0, community,
                                          community)};
    }
    bool LeftAlone() const {
        return text.IsUntouched() && raw.IsUntouched() && set.IsUntouched() &&
               record.IsUntouched() && type == VN_TYPE_OCTET_STRING;
    }

    GuardedBuffer text{260};
    GuardedBuffer raw{256};
    GuardedBuffer set{16};
    GuardedBuffer record{sizeof(VnResponseRecord)};
    uint32_t type = VN_TYPE_OCTET_STRING;

  private:
    const Module& module_;
};

class DirectedFailure : public LoggedTest {
  protected:
    AllDirected all{module};
};

TEST_F(DirectedFailure, NullHostsGetNothing) {
    SilentDevices();
    EXPECT_THAT(all.Call(nullptr, kSysName, nullptr), Each(0));
    EXPECT_TRUE(all.LeftAlone());
    EXPECT_THAT(agents->Requests(), IsEmpty());
    EXPECT_THAT(log.Lines(), Not(Contains("SCKRAW::SCKRAW()\n")));
}

TEST_F(DirectedFailure, OidsThatDoNotEncodeGetNothing) {
    std::string tooLong = "1.3";
    for (int i = 0; i < 124; ++i) tooLong += ".1";
    SilentDevices();
    for (const char* oid : {"", ".", ".1", "no number", tooLong.c_str(), (const char*)nullptr}) {
        std::vector<int32_t> results = all.Call(kHost, oid, "c");
        EXPECT_EQ(std::vector<int32_t>(5, 0), results) << (oid ? oid : "(null)");
    }
    EXPECT_TRUE(all.LeftAlone());
    // GetSnmpInformation has an OID of its own.
    EXPECT_THAT(agents->Requests(), SizeIs(6));
    for (const Request& request : agents->Requests()) {
        EXPECT_EQ(SnmpGet(kDefaultOid, "c"), request.data);
    }
}

TEST_F(DirectedFailure, CommunitiesThatDoNotFitGetNothing) {
    SilentDevices();
    for (const size_t size : {256, 259, 260, 300, 5000}) {
        const std::string community(size, 'c');
        EXPECT_THAT(all.Call(kHost, kSysName, community.c_str()), Each(0)) << size;
    }
    EXPECT_TRUE(all.LeftAlone());
    EXPECT_THAT(agents->Requests(), IsEmpty());
    EXPECT_THAT(log.Lines(), Not(Contains(kSilence)));
}

TEST_F(DirectedFailure, SendsThatFailGiveMinusOneFromTheRawExports) {
    const Sends sends(module, [](int) { return WSAENETUNREACH; });
    SilentDevices();
    EXPECT_THAT(all.Call(kHost, kSysName, nullptr), ElementsAre(0, 0, -1, -1, -1));
    EXPECT_TRUE(all.LeftAlone());
    const Lines lines = log.Lines();
    EXPECT_EQ(5, std::count(lines.begin(), lines.end(), "sendto() failed - 10051\n"));
    EXPECT_EQ(5, std::count(lines.begin(), lines.end(), "sendto() failed, err: 10051\n"));
}

TEST_F(DirectedFailure, SocketsThatAreNotStartedEndTheWaitAtOnce) {
    const Receives receives(module, [](int) { return WSANOTINITIALISED; });
    DeviceIn("neta", {{SnmpText("A")}});
    EXPECT_THAT(all.Call(kHost, kSysName, nullptr), Each(0));
    EXPECT_TRUE(all.LeftAlone());
    EXPECT_EQ(5, receives.Calls());
    const Lines lines = log.Lines();
    EXPECT_EQ(5, std::count(lines.begin(), lines.end(), "tszRecvAddr = WSAStartup failed\n"));
}

// A closed port shows as 10054 on the next receive; each failure costs one of the five attempts.
TEST_F(DirectedFailure, AFailedReceiveCostsAnAttempt) {
    const Receives receives(module, [](int) { return WSAECONNRESET; });
    DeviceIn("neta", {{SnmpText("A"), {}, 0, 20, 20000}});
    GuardedBuffer value(256);
    EXPECT_EQ(0, module.GetSnmpRequestRaw(kHost, kSysName, value.Data(), 256, nullptr, 0, 0,
                                          nullptr, nullptr));
    EXPECT_EQ(5, receives.Calls());
}

TEST_F(DirectedFailure, ANameThatNobodyKnowsIsWaitedForInVain) {
    SilentDevices();
    EXPECT_EQ(0, module.GetSnmpRequestRaw("no.such.name.invalid", kSysName, nullptr, 0, nullptr, 0,
                                          0, nullptr, nullptr));
    EXPECT_THAT(waits.Silent(), ElementsAre(2000, 2000, 2000, 2000, 2000));
    EXPECT_THAT(agents->Requests(), IsEmpty());
}

TEST_F(DirectedFailure, AnotherTypeThanExpectedIsNoAnswer) {
    DeviceIn("neta", {{SnmpText("A")}});
    EXPECT_EQ(0, module.GetSnmpRequest(kHost, kSysDescr, all.text.Text(), 260, VN_TYPE_INTEGER, 0,
                                       0, nullptr, nullptr));
    EXPECT_TRUE(all.LeftAlone());
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(Lines{"g_nAdapter [0]\n", "VxSNMP::VxSNMP()\n", "szBindIp []\n",
                               "SNMP::GetInformation - [10.77.1.11]\n", "SCKRAW::SCKRAW()\n"} +
                         RequestLines(9, "2b 06 01 02 01 01 01 00 ", SnmpGet(kSysDescr)) +
                         Lines{"VxSnmpMgr::~VxSnmpMgr()\n", "SCKRAW::~SCKRAW() [-1]\n"}));
}

class DirectedLog : public LoggedTest {};

TEST_F(DirectedLog, TellsAnIntegerByteByByte) {
    DeviceIn("neta", {{SnmpAnswer(kSysDescr, 2, {0x01, 0xFF})}});
    char text[16];
    module.GetSnmpRequest(kHost, kSysDescr, text, sizeof text, VN_TYPE_INTEGER, 0, 0, nullptr,
                          nullptr);
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(Lines{"g_nAdapter [0]\n", "VxSNMP::VxSNMP()\n", "szBindIp []\n",
                               "SNMP::GetInformation - [10.77.1.11]\n", "SCKRAW::SCKRAW()\n"} +
                         RequestLines(9, "2b 06 01 02 01 01 01 00 ", SnmpGet(kSysDescr)) +
                         Lines{"0 - [01]\n", "1 - [ff]\n", "VxSnmpMgr::~VxSnmpMgr()\n",
                               "SCKRAW::~SCKRAW() [-1]\n"}));
}

TEST_F(DirectedLog, TellsWhatAGetNextFound) {
    DeviceIn("neta", {{SnmpText("prn1", kSysName)}});
    VnResponseRecord record;
    module.GetNextSnmpRequestRaw(kHost, kSysDescr, &record, 0, 0, nullptr, nullptr);
    SnmpMessage next;
    next.oid = kSysDescr;
    next.pduType = 0xA1;
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(Lines{"VxSNMP::VxSNMP()\n", "SNMP::GetInformation1 - [10.77.1.11]\n",
                               "SCKRAW::SCKRAW()\n"} +
                         RequestLines(9, "2b 06 01 02 01 01 01 00 ", Encode(next)) +
                         Lines{"Copy Result [4312]\n", "OID = [2b 06 01 02 01 01 05 00 ]\n",
                               "VxSnmpMgr::~VxSnmpMgr()\n", "SCKRAW::~SCKRAW() [-1]\n"}));
}

TEST_F(DirectedLog, TellsASetThatNobodyAnswers) {
    SilentDevices();
    uint8_t value[] = {7};
    uint32_t type = VN_TYPE_INTEGER;
    module.SetSnmpRequestRaw(kHost, kSysName, value, 1, &type, 0, 0, nullptr, nullptr);
    SnmpMessage set;
    set.oid = kSysName;
    set.pduType = 0xA3;
    set.valueType = 2;
    set.value = {7};
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(
            Lines{"VxSNMP::VxSNMP()\n", "SNMP::SetInformationByStr - [10.77.1.11]\n",
                  "SCKRAW::SCKRAW()\n", "OID length [9]\n", "OID = [2b 06 01 02 01 01 05 00 ]\n",
                  "SNMP::SetInformation - [10.77.1.11]\n",
                  "SNMP_MSG = [" + LogHex(Encode(set)) + "]\n"} +
            Times(5, {kSilence}) + Lines{"VxSnmpMgr::~VxSnmpMgr()\n", "SCKRAW::~SCKRAW() [-1]\n"}));
}

class DirectedWaits : public LabTest {
  protected:
    int32_t Get() {
        return module.GetSnmpRequestRaw(kHost, kSysName, nullptr, 0, nullptr, 1, 99, nullptr,
                                        nullptr);
    }
};

TEST_F(DirectedWaits, ASilentDeviceCostsFiveWaitsOfTwoSecondsAndOneDatagram) {
    const Waits waits(module, Waits::kReal);
    SilentDevices();
    const int64_t started = NowMs();
    EXPECT_EQ(0, Get());
    EXPECT_THAT(NowMs() - started, AllOf(Ge(10000), Le(11500)));
    EXPECT_THAT(waits.Silent(), ElementsAre(2000, 2000, 2000, 2000, 2000));
    EXPECT_THAT(agents->Requests(), SizeIs(1));
}

TEST_F(DirectedWaits, AnAnswerAfterTheThirdWaitIsTaken) {
    const Waits waits(module);
    DeviceIn("neta", {{SnmpText("prn1"), {}, 3 * 500 + 250}});
    EXPECT_EQ(4, Get());
    EXPECT_THAT(waits.Silent(), SizeIs(3));
}

TEST_F(DirectedWaits, AnAnswerAfterTheFifthWaitIsNot) {
    const Waits waits(module);
    DeviceIn("neta", {{SnmpText("prn1"), {}, 5 * 500 + 400}});
    EXPECT_EQ(0, Get());
    EXPECT_THAT(waits.Silent(), SizeIs(5));
}

}  // namespace
}  // namespace vndiscover
