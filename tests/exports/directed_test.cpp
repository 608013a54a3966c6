// The five directed exports: their requests, what they write to the host's buffers and that they
// stay within them, their results without an answer, and their log lines.
#include "exports/support/network_test.h"

namespace vndiscover {
namespace {

constexpr char kHost[] = "10.77.1.11";

class Directed : public NetworkTest {
  protected:
    void Answer(const Bytes& datagram) { DeviceIn("neta", {{datagram}}); }

    // With various time-outs and retries, which have no effect.
    int32_t Raw(uint8_t* value, int32_t size, const char* host = kHost) {
        return module.GetSnmpRequestRaw(host, kSysDescr, value, size, &type, 5000, 9, nullptr,
                                        nullptr);
    }
    int32_t Text(char* value, int32_t size, uint32_t expectedType) {
        return module.GetSnmpRequest(kHost, kSysDescr, value, size, expectedType, 1, 0, nullptr,
                                     nullptr);
    }
    int32_t Next(VnResponseRecord* out) {
        return module.GetNextSnmpRequestRaw(kHost, kSysName, out, 0, 99, nullptr, nullptr);
    }
    int32_t Set(uint8_t* value, int32_t length, const char* oid = kSysName) {
        return module.SetSnmpRequestRaw(kHost, oid, value, length, &type, 0, 0, nullptr, nullptr);
    }
    std::vector<int32_t> CallAll(const char* host, const char* oid, const char* read = nullptr,
                                 const char* write = nullptr) {
        auto* next = reinterpret_cast<VnResponseRecord*>(record.Data());
        return {module.GetSnmpInformation(host, text.Text(), read, write),
                module.GetSnmpRequest(host, oid, text.Text(), 260, 4, 0, 0, read, write),
                module.GetSnmpRequestRaw(host, oid, raw.Data(), 256, &type, 0, 0, read, write),
                module.GetNextSnmpRequestRaw(host, oid, next, 0, 0, read, write),
                module.SetSnmpRequestRaw(host, oid, set.Data(), 4, &type, 0, 0, read, write)};
    }
    // CallAll's.
    void ExpectNothingIsTouched() const {
        for (const GuardedBuffer* buffer : {&text, &raw, &set, &record}) {
            EXPECT_TRUE(buffer->IsUntouched()) << buffer->Size();
        }
        EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
    }

    GuardedBuffer text{260}, raw{256}, set{4}, record{sizeof(VnResponseRecord)};
    uint32_t type = VN_TYPE_OCTET_STRING;
};

// The buffer starts with the bytes, and the rest is unchanged.
void ExpectHolds(const Bytes& bytes, const GuardedBuffer& buffer) {
    EXPECT_EQ(bytes, Prefix(buffer.Content(), bytes.size()));
    EXPECT_TRUE(buffer.IsUntouched(bytes.size()));
}

TEST_F(Directed, RequestsAreSentOnceWithTheirCommunity) {
    const char* const rows[][4] = {{nullptr, nullptr, "sesame", "sesame"},
                                   {"", "", "sesame", "sesame"},
                                   {"public", "private", "public", "private"}};
    for (const auto& [read, write, readSent, writeSent] : rows) {
        Answer(SnmpText(""));
        CallAll(kHost, kSysName, read, write);
        EXPECT_THAT(Sent(), ElementsAre(SnmpGet(kDefaultOid, readSent), SnmpGet(kSysName, readSent),
                                        SnmpGet(kSysName, readSent),
                                        Encode({kSysName, 5, {}, 0xA1, readSent}),
                                        Encode({kSysName, 4, set.Content(), 0xA3, writeSent})));
        EXPECT_EQ(Lines(5, "neta: 10.77.1.1 > 10.77.1.11:161"), Ways());
    }
}

TEST_F(Directed, InvalidArgumentsSendNothing) {
    EXPECT_THAT(CallAll(nullptr, kSysName), Each(0));
    EXPECT_FALSE(log.Has("SCKRAW::SCKRAW()\n"));
    const std::string community(256, 'c');
    EXPECT_THAT(CallAll(kHost, kSysName, community.c_str(), community.c_str()), Each(0));
    EXPECT_THAT(Sent(), IsEmpty());
    const std::string tooLong = LongOid(125);
    for (const char* oid : {"", ".1", tooLong.c_str(), (const char*)nullptr}) {
        EXPECT_THAT(CallAll(kHost, oid), Each(0)) << (oid ? oid : "(null)");
    }
    // GetSnmpInformation has a fixed OID.
    EXPECT_EQ(std::vector<Bytes>(4, SnmpGet(kDefaultOid)), Sent());
    ExpectNothingIsTouched();
}

TEST_F(Directed, FailedSendsEndAtOnce) {
    network.sendError = [](int call) { return call <= 5 ? WSAENETUNREACH : 0; };
    EXPECT_THAT(CallAll(kHost, kSysName), ElementsAre(0, 0, -1, -1, -1));
    EXPECT_THAT(log.Lines(), Contains("sendto() failed - 10051\n").Times(5));
    EXPECT_THAT(log.Lines(), Contains("sendto() failed, err: 10051\n").Times(5));
    network.receiveError = [](int) { return WSANOTINITIALISED; };
    Answer(SnmpText("A"));
    EXPECT_THAT(CallAll(kHost, kSysName), Each(0));
    EXPECT_EQ(5, network.Receives());
    EXPECT_THAT(log.Lines(), Contains("tszRecvAddr = WSAStartup failed\n").Times(5));
    ExpectNothingIsTouched();
}

// Time-outs, empty datagrams and failed receives (10054 for a closed port) each use up an attempt.
TEST_F(Directed, AnswersCountWithinFiveAttempts) {
    struct {
        uint32_t delayMs;
        size_t empty;
        int failing;
        int32_t result;
        size_t silentWaits;
    } const rows[] = {{9999, 0, 0, 4, 4},
                      {10001, 0, 0, 0, 5},
                      {0, 3, 1, 4, 0},
                      {0, 4, 1, 0, 0},
                      {2001, 1, 1, 4, 1}};
    for (const auto& row : rows) {
        Answers answers(row.empty);
        answers.push_back({SnmpText("prn1"), {}, row.delayMs});
        DeviceIn("neta", answers);
        network.receiveError = [&, first = network.Receives()](int call) {
            return call <= first + row.failing ? WSAECONNRESET : 0;
        };
        EXPECT_EQ(row.result, Raw(nullptr, 0)) << row.delayMs << ' ' << row.empty;
        EXPECT_EQ(std::vector<int>(row.silentWaits, 2000), SilentWaits());
        EXPECT_THAT(Requests(), SizeIs(1));
    }
    SilentDevices();
    EXPECT_EQ(0, Raw(nullptr, 0, "no.such.name.invalid"));
    EXPECT_THAT(SilentWaits(), SizeIs(5)) << "a name that is not found counts as sent";
}

// The first datagram is the answer, whatever its content and sender.
TEST_F(Directed, AnswersAreCopiedFieldByField) {
    const SnmpMessage other = {kDefaultOid, 4, TextBytes("elsewhere"), 0xA7, "other", {42}, 5};
    // A name of 200 bytes, too long for a record, and a value of 255, the longest that the module
    // reads.
    const Bytes longest = Hex("30 82 00 FF 02 01 00 04 01 70 A2 82 00 F0 02 01 01 02 01 00 02 01 00"
                              "30 82 00 E0 30 82 00 E0 06 C8") +
                          Bytes(200, 0x2B) + Hex("04 FF") + Bytes(255, 'y') + Bytes(40, 'z');
    struct {
        Bytes datagram;
        uint16_t type;
        Bytes value, oid;
    } const rows[] = {
        {SnmpAnswer(kSysDescr, 2, {0x7F, 0xFF}), 2, {0x7F, 0xFF}, OidContent(kSysDescr)},
        {SnmpAnswer(kSysName, 4, {0, 1, 0, 2}), 4, {0, 1, 0, 2}, OidContent(kSysName)},
        {Encode(other), 4, other.value, OidContent(kDefaultOid)},
        {SnmpAnswer(kSysName, 5, {}), 5, {}, OidContent(kSysName)},
        {longest, 4, Bytes(255, 'y'), Bytes(128, 0x2B)},
        {TextBytes("no SNMP"), 0, {}, {}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(ToHex(row.datagram));
        DeviceIn("neta", {{row.datagram, "10.77.1.15"}, {SnmpText("Model")}});
        const auto length = static_cast<int32_t>(row.value.size());
        type = 99;
        EXPECT_EQ(length, Raw(raw.Fresh(), 256));
        EXPECT_EQ(row.type, type);
        ExpectHolds(length == 0 ? Bytes() : row.value + Bytes{0}, raw);

        VnResponseRecord next = {};
        std::memset(next.reserved, GuardedBuffer::kFill, sizeof next.reserved);
        next.valueType = row.type;
        next.valueLength = static_cast<uint16_t>(length);
        std::strcpy(next.address, "10.77.1.15");
        std::copy(row.value.begin(), row.value.end(), next.value);
        std::copy(row.oid.begin(), row.oid.end(), next.oid);
        next.oidLength = static_cast<uint16_t>(row.oid.size());
        EXPECT_EQ(length, Next(record.Fresh<VnResponseRecord>()));
        EXPECT_EQ(0, std::memcmp(&next, record.Data(), sizeof next));
        EXPECT_TRUE(record.FrontStands());
        EXPECT_EQ(length, Next(nullptr));

        // Longer than the four bytes that were set, which the runtime zeroes.
        type = VN_TYPE_OPAQUE;
        EXPECT_EQ(length, Set(set.Fresh(), 4));
        EXPECT_EQ(row.type, type);
        ExpectHolds(length > 4 ? Bytes(4, 0) : row.value, set);
    }
}

TEST_F(Directed, TextIsFormattedByTheExpectedType) {
    struct {
        uint8_t answered;
        Bytes value;
        uint32_t expected;
        const char* text;  // null: nothing is written
    } const rows[] = {{4, TextBytes("AB"), 4, "AB"},
                      {4, {'a', 'b', 0, 'c', 'd'}, 4, "ab"},
                      {2, {0}, 2, "0"},
                      {2, {0xFF}, 2, "255"},  // without sign extension
                      {2, {0x7F, 0xFF, 0xFF, 0xFF}, 2, "2147483647"},
                      {2, {0x80, 0, 0, 0}, 2, "-2147483648"},
                      {2, {1, 0, 0, 0, 2}, 2, "2"},
                      {4, TextBytes("AB"), 2, nullptr},
                      {2, TextBytes("AB"), 4, nullptr},
                      // The types agree, but this one has no text.
                      {0x41, TextBytes("AB"), 0x41, nullptr}};
    for (const auto& row : rows) {
        Answer(SnmpAnswer(kSysDescr, row.answered, row.value));
        GuardedBuffer value(12);
        EXPECT_EQ(row.answered == row.expected ? static_cast<int32_t>(row.value.size()) : 0,
                  Text(value.Text(), 12, row.expected));
        ExpectHolds(row.text ? TextBytes(row.text) + Bytes{0} : Bytes(), value);
    }
}

// The C runtime's bounded copies zero a raw value and empty a text. Its invalid-parameter handler
// cannot be set under Wine, where it does nothing.
TEST_F(Directed, BuffersAreNeverOverrun) {
    Answer(SnmpText("LaserPro"));
    for (const int32_t size : {9, 8, 1, 0, -1, INT32_MIN}) {
        const auto room = static_cast<size_t>(std::max(size, 0));
        GuardedBuffer value(room), string(room);
        EXPECT_EQ(8, Raw(value.Data(), size));
        EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
        ExpectHolds(size == 9 ? TextBytes("LaserPro") + Bytes{0} : Bytes(room, 0), value);
        EXPECT_EQ(8, Text(string.Text(), size, VN_TYPE_OCTET_STRING));
        EXPECT_TRUE(string.FrontStands());
        EXPECT_TRUE(room == 0 || string.Content()[0] == (size == 9 ? 'L' : 0));
    }
    // Wine's runtime accepts a null buffer, but on Windows it may end the process.
    const ImportPatch strict(module.Handle(), "strcpy_s",
                             [](char* out, rsize_t size, const char* value) {
                                 EXPECT_NE(nullptr, out);
                                 return strcpy_s(out, size, value);
                             });
    EXPECT_EQ(8, Raw(nullptr, 256));
    EXPECT_EQ(8, Text(nullptr, 256, VN_TYPE_OCTET_STRING));
    EXPECT_EQ(8, module.GetSnmpInformation(kHost, nullptr, nullptr, nullptr));
}

TEST_F(Directed, SetSendsOnlyWhatFitsABinding) {
    const std::tuple<size_t, size_t, bool> rows[] = {// bytes of the value and of the OID
                                                     {0, 8, true},
                                                     {126, 124, true},
                                                     {127, 8, false},
                                                     {1, 125, false}};
    for (const auto& [valueBytes, oidBytes, isSent] : rows) {
        SilentDevices();
        GuardedBuffer value(valueBytes);
        type = 0xFFFFFF00 | VN_TYPE_OPAQUE;  // only the low byte is the tag
        EXPECT_EQ(0, Set(value.Data(), value.Size(), LongOid(oidBytes).c_str()));
        EXPECT_TRUE(value.IsUntouched());
        ASSERT_THAT(Sent(), SizeIs(isSent ? 1 : 0)) << valueBytes << ' ' << oidBytes;
        if (!isSent) continue;
        const Bytes sent = Sent()[0], tlv = Tlv(VN_TYPE_OPAQUE, value.Content());
        EXPECT_EQ(tlv, Bytes(sent.end() - static_cast<std::ptrdiff_t>(tlv.size()), sent.end()));
    }
    SilentDevices();
    EXPECT_EQ(0, Set(set.Data(), 4, nullptr));
    EXPECT_EQ(0, Set(nullptr, 4));
    EXPECT_EQ(0, Set(set.Data(), -1));
    EXPECT_EQ(0, module.SetSnmpRequestRaw(kHost, kSysName, set.Data(), 4, nullptr, 0, 0, nullptr,
                                          nullptr));
    EXPECT_THAT(Requests(), IsEmpty());
}

TEST_F(Directed, RequestsLogEachStep) {
    const std::string end = "VxSnmpMgr::~VxSnmpMgr()\nSCKRAW::~SCKRAW() [-1]\n";
    const std::string get =
        "g_nAdapter [0]\nVxSNMP::VxSNMP()\nszBindIp []\nSCKRAW::SCKRAW()\n" +
        RequestLines(kSysDescr, SnmpGet(kSysDescr), "SNMP::GetInformation - [10.77.1.11]\n");
    Answer(SnmpAnswer(kSysDescr, 2, {0x01, 0xFF}));
    Text(text.Text(), 260, 2);
    ExpectLog(get + "0 - [01]\n1 - [ff]\n" + end);
    Text(text.Text(), 260, 4);  // another type than expected
    ExpectLog(get + end);
    Next(record.Fresh<VnResponseRecord>());
    ExpectLog("VxSNMP::VxSNMP()\nSNMP::GetInformation1 - [10.77.1.11]\nSCKRAW::SCKRAW()\n" +
              RequestLines(kSysName, Encode({kSysName, 5, {}, 0xA1})) +
              "Copy Result [4312]\nOID = [2b 06 01 02 01 01 01 00 ]\n" + end);
    SilentDevices();
    Set(set.Data(), 4);
    std::string waits;
    for (int i = 0; i < 5; ++i) waits += "RecvFrom - Timeout\n";
    ExpectLog("VxSNMP::VxSNMP()\nSNMP::SetInformationByStr - [10.77.1.11]\nSCKRAW::SCKRAW()\n" +
              RequestLines(kSysName, Encode({kSysName, 4, set.Content(), 0xA3}),
                           "SNMP::SetInformation - [10.77.1.11]\n") +
              waits + end);
}

}  // namespace
}  // namespace vndiscover
