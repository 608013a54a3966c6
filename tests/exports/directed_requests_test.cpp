// The five directed exports alike: what each sends, and what it gives and logs where no answer
// comes.
#include "exports/support/guarded_buffer.h"
#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

constexpr char kHost[] = "10.77.1.11";

class DirectedRequests : public LoggedTest {
  protected:
    std::vector<int32_t> CallAll(const char* host, const char* oid, const char* read = nullptr,
                                 const char* write = nullptr) {
        auto* next = reinterpret_cast<VnResponseRecord*>(record.Data());
        return {module.GetSnmpInformation(host, text.Text(), read, write),
                module.GetSnmpRequest(host, oid, text.Text(), 260, 4, 0, 0, read, write),
                module.GetSnmpRequestRaw(host, oid, raw.Data(), 256, &type, 0, 0, read, write),
                module.GetNextSnmpRequestRaw(host, oid, next, 0, 0, read, write),
                module.SetSnmpRequestRaw(host, oid, set.Data(), 16, &type, 0, 0, read, write)};
    }
    bool AllIsUntouched() const {
        return text.IsUntouched() && raw.IsUntouched() && set.IsUntouched() &&
               record.IsUntouched() && type == VN_TYPE_OCTET_STRING;
    }
    // What reached the device.
    std::vector<Bytes> Sent() {
        std::vector<Bytes> sent;
        for (const Request& request : agents->Requests()) {
            EXPECT_EQ("10.77.1.11:161", request.local + ':' + std::to_string(request.port));
            sent.push_back(request.data);
        }
        return sent;
    }
    int64_t Count(const std::string& line) const {
        const Lines lines = log.Lines();
        return std::count(lines.begin(), lines.end(), line);
    }

    GuardedBuffer text{260};
    GuardedBuffer raw{256};
    GuardedBuffer set{16};
    GuardedBuffer record{sizeof(VnResponseRecord)};
    uint32_t type = VN_TYPE_OCTET_STRING;
};

TEST_F(DirectedRequests, GoOnceToTheDeviceWithTheCommunityOfTheirKind) {
    struct {
        const char *read, *write;
        std::string readSent, writeSent;
    } const rows[] = {{nullptr, nullptr, "sesame", "sesame"},
                      {"", "", "sesame", "sesame"},
                      {"public", "private", "public", "private"}};
    for (const auto& row : rows) {
        DeviceIn("neta", {{SnmpText("prn1")}});
        const SnmpMessage next = {kSysName, 5, {}, 0xA1, row.readSent};
        const SnmpMessage setting = {kSysName, 4, set.Content(), 0xA3, row.writeSent};
        CallAll(kHost, kSysName, row.read, row.write);
        EXPECT_THAT(Sent(),
                    ElementsAre(SnmpGet(kDefaultOid, row.readSent), SnmpGet(kSysName, row.readSent),
                                SnmpGet(kSysName, row.readSent), Encode(next), Encode(setting)));
    }
}

TEST_F(DirectedRequests, AreNotMadeOfWhatCannotBeSent) {
    DeviceIn("neta", {{TextBytes("no SNMP")}});  // so that nobody waits where something is sent
    EXPECT_THAT(CallAll(nullptr, kSysName), Each(0));
    EXPECT_FALSE(log.Has("SCKRAW::SCKRAW()\n"));
    for (const size_t size : {256, 260, 5000}) {
        const std::string community(size, 'c');
        EXPECT_THAT(CallAll(kHost, kSysName, community.c_str(), community.c_str()), Each(0));
    }
    EXPECT_THAT(Sent(), IsEmpty());
    std::string tooLong = "1.3";
    for (int i = 0; i < 124; ++i) tooLong += ".1";
    for (const char* oid : {"", ".", ".1", "no number", tooLong.c_str(), (const char*)nullptr}) {
        EXPECT_THAT(CallAll(kHost, oid), Each(0)) << (oid ? oid : "(null)");
    }
    // GetSnmpInformation has an OID of its own.
    EXPECT_EQ(std::vector<Bytes>(6, SnmpGet(kDefaultOid)), Sent());
    EXPECT_TRUE(AllIsUntouched());
}

TEST_F(DirectedRequests, ThatCannotBeSentGiveMinusOneFromTheRawExports) {
    const Sends sends(module, [](int) { return WSAENETUNREACH; });
    SilentDevices();
    EXPECT_THAT(CallAll(kHost, kSysName), ElementsAre(0, 0, -1, -1, -1));
    EXPECT_TRUE(AllIsUntouched());
    EXPECT_EQ(5, Count("sendto() failed - 10051\n"));
    EXPECT_EQ(5, Count("sendto() failed, err: 10051\n"));
}

TEST_F(DirectedRequests, EndAtOnceWhereSocketsAreNotStarted) {
    const Receives receives(module, [](int) { return WSANOTINITIALISED; });
    DeviceIn("neta", {{SnmpText("A")}});
    EXPECT_THAT(CallAll(kHost, kSysName), Each(0));
    EXPECT_TRUE(AllIsUntouched());
    EXPECT_EQ(5, receives.Calls());
    EXPECT_EQ(5, Count("tszRecvAddr = WSAStartup failed\n"));
}

// A closed port shows as 10054 on the next receive.
TEST_F(DirectedRequests, LoseOneOfFiveAttemptsToAFailedReceiveOrAnEmptyDatagram) {
    const Receives receives(module, [](int call) { return call == 1 ? WSAECONNRESET : 0; });
    for (const size_t empty : {3, 5}) {
        std::vector<Answer> answers(empty);
        answers.push_back({SnmpText("prn1")});
        DeviceIn("neta", answers);
        EXPECT_EQ(empty == 3 ? 4 : 0, module.GetSnmpRequestRaw(kHost, kSysName, nullptr, 0, nullptr,
                                                               0, 0, nullptr, nullptr));
    }
    EXPECT_EQ(10, receives.Calls());
    EXPECT_THAT(waits.Silent(), IsEmpty());
}

TEST_F(DirectedRequests, TakeAnAnswerThatComesWithinFiveWaits) {
    struct {
        const char* host;
        int delayMs;
        int32_t result;
        size_t silentWaits;
    } const rows[] = {{kHost, 3 * 500 + 250, 4, 3},
                      {kHost, 5 * 500 + 400, 0, 5},
                      {"no.such.name.invalid", 0, 0, 5}};
    for (const auto& row : rows) {
        DeviceIn("neta", {{SnmpText("prn1"), {}, row.delayMs}});
        const size_t before = waits.Silent().size();
        EXPECT_EQ(row.result, module.GetSnmpRequestRaw(row.host, kSysName, nullptr, 0, nullptr, 0,
                                                       0, nullptr, nullptr));
        EXPECT_EQ(row.silentWaits, waits.Silent().size() - before);
    }
}

TEST_F(DirectedRequests, TellInTheLogWhatWasReadOfTheAnswer) {
    const Lines get =
        Lines{"g_nAdapter [0]\n", "VxSNMP::VxSNMP()\n", "szBindIp []\n", "SCKRAW::SCKRAW()\n"} +
        RequestLines(9, "2b 06 01 02 01 01 01 00 ", SnmpGet(kSysDescr),
                     {"SNMP::GetInformation - [10.77.1.11]\n"});
    const Lines end = {"VxSnmpMgr::~VxSnmpMgr()\n", "SCKRAW::~SCKRAW() [-1]\n"};
    DeviceIn("neta", {{SnmpAnswer(kSysDescr, 2, {0x01, 0xFF})}});
    module.GetSnmpRequest(kHost, kSysDescr, text.Text(), 260, 2, 0, 0, nullptr, nullptr);
    EXPECT_THAT(log.Lines(), ElementsAreArray(get + Lines{"0 - [01]\n", "1 - [ff]\n"} + end));

    log.Clear();  // another type than expected
    module.GetSnmpRequest(kHost, kSysDescr, text.Text(), 260, 4, 0, 0, nullptr, nullptr);
    EXPECT_THAT(log.Lines(), ElementsAreArray(get + end));

    log.Clear();
    VnResponseRecord next;
    module.GetNextSnmpRequestRaw(kHost, kSysName, &next, 0, 0, nullptr, nullptr);
    EXPECT_THAT(log.Lines(),
                ElementsAreArray(
                    Lines{"VxSNMP::VxSNMP()\n", "SNMP::GetInformation1 - [10.77.1.11]\n",
                          "SCKRAW::SCKRAW()\n"} +
                    RequestLines(9, "2b 06 01 02 01 01 05 00 ", Encode({kSysName, 5, {}, 0xA1})) +
                    Lines{"Copy Result [4312]\n", "OID = [2b 06 01 02 01 01 01 00 ]\n"} + end));
}

class DirectedSilence : public DebugSwitchOn, public LabTest {};

TEST_F(DirectedSilence, CostsFiveWaitsOfTwoSecondsAndOneDatagram) {
    LogCapture log;
    const Waits waits(module, Waits::kReal);
    SilentDevices();
    uint8_t value[] = {7};
    uint32_t type = VN_TYPE_INTEGER;
    const int64_t started = NowMs();
    EXPECT_EQ(0,
              module.SetSnmpRequestRaw(kHost, kSysName, value, 1, &type, 1, 99, nullptr, nullptr));
    EXPECT_THAT(NowMs() - started, AllOf(Ge(10000), Le(11500)));
    EXPECT_THAT(waits.Silent(), ElementsAre(2000, 2000, 2000, 2000, 2000));
    EXPECT_THAT(agents->Requests(), SizeIs(1));
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(Lines{"VxSNMP::VxSNMP()\n", "SNMP::SetInformationByStr - [10.77.1.11]\n",
                               "SCKRAW::SCKRAW()\n", "OID length [9]\n",
                               "OID = [2b 06 01 02 01 01 05 00 ]\n",
                               "SNMP::SetInformation - [10.77.1.11]\n",
                               "SNMP_MSG = [" + LogHex(Encode({kSysName, 2, {7}, 0xA3})) + "]\n"} +
                         Times(5, {"RecvFrom - Timeout\n"}) +
                         Lines{"VxSnmpMgr::~VxSnmpMgr()\n", "SCKRAW::~SCKRAW() [-1]\n"}));
}

}  // namespace
}  // namespace vndiscover
