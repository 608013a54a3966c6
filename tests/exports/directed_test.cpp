// The five directed exports: what each sends, what it hands to the host and that this stays within
// the host's buffers, what it gives where no answer comes, and what it tells the log.
#include "exports/support/log_lines.h"
#include "helpers/guarded_buffer.h"

namespace vndiscover {
namespace {

constexpr char kHost[] = "10.77.1.11";

class Directed : public NetworkTest {
  protected:
    void Answer(const Bytes& datagram) { DeviceIn("neta", {{datagram}}); }

    // Time-outs and retries of any kind: they change nothing.
    int32_t Raw(uint8_t* value, int32_t size, uint32_t* outType, const char* host = kHost) {
        return module.GetSnmpRequestRaw(host, kSysDescr, value, size, outType, 5000, 9, nullptr,
                                        nullptr);
    }
    int32_t Text(char* value, int32_t size, uint32_t expectedType) {
        return module.GetSnmpRequest(kHost, kSysDescr, value, size, expectedType, 1, 0, nullptr,
                                     nullptr);
    }
    int32_t Next(VnResponseRecord* out) {
        return module.GetNextSnmpRequestRaw(kHost, kSysDescr, out, 0, 99, nullptr, nullptr);
    }
    int32_t Set(GuardedBuffer& value, const char* oid = kSysName) {
        return module.SetSnmpRequestRaw(kHost, oid, value.Data(), value.Size(), &type, 0, 0,
                                        nullptr, nullptr);
    }
    std::vector<int32_t> CallAll(const char* host, const char* oid, const char* read = nullptr,
                                 const char* write = nullptr) {
        auto* next = reinterpret_cast<VnResponseRecord*>(record.Data());
        return {module.GetSnmpInformation(host, text.Text(), read, write),
                module.GetSnmpRequest(host, oid, text.Text(), 260, 4, 0, 0, read, write),
                module.GetSnmpRequestRaw(host, oid, raw.Data(), 256, &type, 0, 0, read, write),
                module.GetNextSnmpRequestRaw(host, oid, next, 0, 0, read, write),
                module.SetSnmpRequestRaw(host, oid, set.Data(), 16, &type, 0, 0, read, write)};
    }
    // CallAll's.
    void ExpectNothingIsTouched() const {
        for (const GuardedBuffer* buffer : {&text, &raw, &set, &record}) {
            EXPECT_TRUE(buffer->IsUntouched()) << buffer->Size();
        }
        EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
    }
    int64_t CountOf(const std::string& line) const {
        const Lines lines = log.Lines();
        return std::count(lines.begin(), lines.end(), line);
    }

    GuardedBuffer text{260}, raw{256}, set{16}, record{sizeof(VnResponseRecord)};
    uint32_t type = VN_TYPE_OCTET_STRING;
};

// The bytes at the front, everything after them as it was.
void ExpectHolds(Bytes bytes, const GuardedBuffer& buffer) {
    bytes.resize(static_cast<size_t>(buffer.Size()), GuardedBuffer::kFill);
    EXPECT_EQ(bytes, buffer.Content());
    EXPECT_TRUE(buffer.FrontStands());
}

// A name of 200 bytes, more than a record has room for, and a value of 255: nothing longer can be
// told to the module.
Bytes LongestAnswer() {
    return Hex("30 82 00 FF 02 01 00 04 01 70 A2 82 00 F0 02 01 01 02 01 00 02 01 00"
               "30 82 00 E0 30 82 00 E0 06 C8") +
           Bytes(200, 0x2B) + Hex("04 FF") + Bytes(255, 'y') + Bytes(40, 'z');
}

TEST_F(Directed, RequestsGoOnceToTheDeviceWithTheCommunityOfTheirKind) {
    struct {
        const char *read, *write;
        std::string readSent, writeSent;
    } const rows[] = {{nullptr, nullptr, "sesame", "sesame"},
                      {"", "", "sesame", "sesame"},
                      {"public", "private", "public", "private"}};
    for (const auto& row : rows) {
        Answer(SnmpText("prn1"));
        const SnmpMessage next = {kSysName, 5, {}, 0xA1, row.readSent};
        const SnmpMessage setting = {kSysName, 4, set.Content(), 0xA3, row.writeSent};
        CallAll(kHost, kSysName, row.read, row.write);
        EXPECT_THAT(Sent(),
                    ElementsAre(SnmpGet(kDefaultOid, row.readSent), SnmpGet(kSysName, row.readSent),
                                SnmpGet(kSysName, row.readSent), Encode(next), Encode(setting)));
        EXPECT_EQ(Lines(5, "neta: 10.77.1.1 > 10.77.1.11:161"), Ways());
    }
}

TEST_F(Directed, RequestsAreNotMadeOfWhatCannotBeSent) {
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
    ExpectNothingIsTouched();
}

TEST_F(Directed, RequestsThatFailEndAtOnce) {
    network.sendError = [](int call) { return call <= 5 ? WSAENETUNREACH : 0; };
    EXPECT_THAT(CallAll(kHost, kSysName), ElementsAre(0, 0, -1, -1, -1));
    EXPECT_EQ(5, CountOf("sendto() failed - 10051\n"));
    EXPECT_EQ(5, CountOf("sendto() failed, err: 10051\n"));
    network.receiveError = [](int) { return WSANOTINITIALISED; };
    Answer(SnmpText("A"));
    EXPECT_THAT(CallAll(kHost, kSysName), Each(0));
    EXPECT_EQ(5, network.Receives());
    EXPECT_EQ(5, CountOf("tszRecvAddr = WSAStartup failed\n"));
    ExpectNothingIsTouched();
}

// Each attempt is lost to a silent wait, an empty datagram, or a failed receive: a closed port
// shows as 10054.
TEST_F(Directed, RequestsTakeAnAnswerWithinFiveAttempts) {
    struct {
        const char* host;
        uint32_t delayMs;
        size_t empty;
        int failing;
        int32_t result;
        size_t silentWaits;
    } const rows[] = {{kHost, 9999, 0, 0, 4, 4}, {kHost, 10001, 0, 0, 0, 5},
                      {kHost, 0, 3, 1, 4, 0},    {kHost, 0, 4, 1, 0, 0},
                      {kHost, 2001, 1, 1, 4, 1}, {"no.such.name.invalid", 0, 0, 0, 0, 5}};
    for (const auto& row : rows) {
        Answers answers(row.empty);
        answers.push_back({SnmpText("prn1"), {}, row.delayMs});
        DeviceIn("neta", answers);
        network.receiveError = [&, first = network.Receives()](int call) {
            return call <= first + row.failing ? WSAECONNRESET : 0;
        };
        EXPECT_EQ(row.result, Raw(nullptr, 0, nullptr, row.host))
            << row.delayMs << ' ' << row.empty;
        EXPECT_EQ(std::vector<int>(row.silentWaits, 2000), SilentWaits());
        EXPECT_EQ(row.host == kHost ? 1u : 0u, Requests().size());
    }
}

// The first datagram is the answer, whatever it is and whoever sent it.
TEST_F(Directed, RawValuesArriveWithTheirTypeAndAZeroByte) {
    const SnmpMessage other = {kDefaultOid, 4, TextBytes("elsewhere"), 0xA7, "other", {42}, 5};
    struct {
        Bytes datagram;
        uint32_t type;
        Bytes value;
    } const rows[] = {{SnmpAnswer(kSysDescr, 2, {0x7F, 0xFF}), VN_TYPE_INTEGER, {0x7F, 0xFF}},
                      {SnmpAnswer(kSysDescr, 4, {0, 1, 0}), VN_TYPE_OCTET_STRING, {0, 1, 0}},
                      {SnmpText(""), VN_TYPE_OCTET_STRING, {}},
                      {LongestAnswer(), VN_TYPE_OCTET_STRING, Bytes(255, 'y')},
                      {Encode(other), VN_TYPE_OCTET_STRING, other.value},
                      {TextBytes("no SNMP"), 0, {}}};
    for (const auto& row : rows) {
        DeviceIn("neta", {{row.datagram, "10.77.1.15"}, {SnmpText("Model")}});
        type = 99;
        EXPECT_EQ(static_cast<int32_t>(row.value.size()), Raw(raw.Fresh(), 256, &type));
        EXPECT_EQ(row.type, type);
        ExpectHolds(row.value.empty() ? Bytes() : row.value + Bytes{0}, raw);
    }
}

TEST_F(Directed, TextIsWrittenAsTheExpectedTypeHasIt) {
    const Bytes letters = TextBytes("AB");
    struct {
        uint8_t answered;
        Bytes value;
        uint32_t expected;
        int32_t result;
        const char* text;  // null: nothing is written
    } const rows[] = {
        {4, letters, 4, 2, "AB"},
        {4, {'a', 'b', 0, 'c', 'd'}, 4, 5, "ab"},
        {2, {0}, 2, 1, "0"},
        {2, {0xFF}, 2, 1, "255"},  // without sign extension
        {2, {0x7F, 0xFF, 0xFF, 0xFF}, 2, 4, "2147483647"},
        {2, {0x80, 0, 0, 0}, 2, 4, "-2147483648"},
        {2, {1, 0, 0, 0, 2}, 2, 5, "2"},
        {4, letters, 2, 0, nullptr},
        {2, letters, 4, 0, nullptr},
        {0x41, letters, 0x41, 2, nullptr},  // agreed upon, but no type that has a text
    };
    for (const auto& row : rows) {
        Answer(SnmpAnswer(kSysDescr, row.answered, row.value));
        GuardedBuffer value(12);
        EXPECT_EQ(row.result, Text(value.Text(), 12, row.expected));
        ExpectHolds(row.text ? TextBytes(row.text) + Bytes{0} : Bytes(), value);
    }
    Answer(SnmpText("Model 1"));
    EXPECT_EQ(7, module.GetSnmpInformation(kHost, text.Text(), nullptr, nullptr));
    EXPECT_STREQ("Model 1", text.Text());
}

// Under Wine the runtime lets a null buffer pass, on Windows it may end the process.
errno_t CopyIntoSomething(char* out, rsize_t size, const char* text) {
    EXPECT_NE(nullptr, out);
    return strcpy_s(out, size, text);
}

// The bounded copies of the C runtime decide: a raw value is zeroed, a text becomes empty. Its
// invalid-parameter handler cannot be set under Wine, where it does nothing.
TEST_F(Directed, BuffersAreNeverOverrun) {
    const Bytes whole = TextBytes("LaserPro") + Bytes{0};
    Answer(SnmpText("LaserPro"));
    for (const int32_t size : {9, 8, 1, 0, -1, INT32_MIN}) {
        const auto room = static_cast<size_t>(std::max(size, 0));
        GuardedBuffer value(room), string(room);
        EXPECT_EQ(8, Raw(value.Data(), size, &type));
        EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
        ExpectHolds(size == 9 ? whole : Bytes(room, 0), value);
        EXPECT_EQ(8, Text(string.Text(), size, VN_TYPE_OCTET_STRING));
        EXPECT_TRUE(string.FrontStands());
        EXPECT_TRUE(room == 0 || string.Content()[0] == (size == 9 ? 'L' : 0));
    }
    const ImportPatch strict(module.Handle(), "strcpy_s", CopyIntoSomething);
    EXPECT_EQ(8, Raw(nullptr, 256, &type));
    EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
    EXPECT_EQ(8, Text(nullptr, 256, VN_TYPE_OCTET_STRING));
    EXPECT_EQ(8, module.GetSnmpInformation(kHost, nullptr, nullptr, nullptr));
}

TEST_F(Directed, NextFillsTheRecordFieldByField) {
    struct {
        Bytes datagram;
        uint16_t type;
        Bytes value, oid;
    } const rows[] = {
        {SnmpAnswer(kSysName, 6, {0x2B, 6, 1, 4}), 6, {0x2B, 6, 1, 4}, OidContent(kSysName)},
        // An error is delivered like any other answer.
        {Encode({kSysDescr, 5, {}, 0xA2, "sesame", {1}, 2}), 5, {}, OidContent(kSysDescr)},
        {LongestAnswer(), 4, Bytes(255, 'y'), Bytes(128, 0x2B)},
    };
    for (const auto& row : rows) {
        Answer(row.datagram);
        VnResponseRecord expected = {};
        std::memset(expected.reserved, GuardedBuffer::kFill, sizeof expected.reserved);
        expected.valueType = row.type;
        expected.valueLength = static_cast<uint16_t>(row.value.size());
        std::memcpy(expected.address, kHost, sizeof kHost);
        std::copy(row.value.begin(), row.value.end(), expected.value);
        std::copy(row.oid.begin(), row.oid.end(), expected.oid);
        expected.oidLength = static_cast<uint16_t>(row.oid.size());
        EXPECT_EQ(expected.valueLength, Next(record.Fresh<VnResponseRecord>()));
        EXPECT_EQ(0, std::memcmp(&expected, record.Data(), sizeof expected)) << row.type;
        EXPECT_TRUE(record.FrontStands());
        EXPECT_EQ(expected.valueLength, Next(nullptr));
    }
}

TEST_F(Directed, SetHandsBackTheAnswersValueAndType) {
    struct {
        uint8_t type;
        Bytes value;
        Bytes content;  // of the host's four bytes
    } const rows[] = {{0x42, {9, 8}, {9, 8, 0xA5, 0xA5}},
                      {VN_TYPE_INTEGER, {1, 2, 3, 4}, {1, 2, 3, 4}},
                      {VN_TYPE_NULL, {}, Bytes(4, 0xA5)},
                      // Longer than the value: the runtime zeroes what the caller gave.
                      {VN_TYPE_OCTET_STRING, TextBytes("longer"), Bytes(4, 0)}};
    for (const auto& row : rows) {
        Answer(SnmpAnswer(kSysName, row.type, row.value));
        GuardedBuffer value(4);
        type = VN_TYPE_OCTET_STRING;
        EXPECT_EQ(static_cast<int32_t>(row.value.size()), Set(value));
        EXPECT_EQ(row.type, type);
        ExpectHolds(row.content, value);
    }
}

TEST_F(Directed, SetSendsWhatFitsABindingAndNothingElse) {
    struct {
        size_t valueBytes, oidBytes;
        bool isSent;
    } const rows[] = {{0, 8, true},    {126, 8, true},  {126, 124, true}, {127, 8, false},
                      {256, 8, false}, {382, 8, false}, {1, 125, false},  {1, 380, false}};
    for (const auto& row : rows) {
        Answer(SnmpAnswer(kSysName, VN_TYPE_NULL, {}));
        std::string oid = "1.3";
        while (oid.size() < 2 * row.oidBytes + 1) oid += ".1";
        GuardedBuffer value(row.valueBytes);
        type = 0xFFFFFF00 | VN_TYPE_OPAQUE;  // the low byte alone is the tag
        EXPECT_EQ(0, Set(value, oid.c_str()));
        EXPECT_TRUE(value.IsUntouched());
        ASSERT_THAT(Sent(), SizeIs(row.isSent ? 1 : 0)) << row.valueBytes << ' ' << row.oidBytes;
        if (!row.isSent) continue;
        const Bytes sent = Sent()[0], tlv = Tlv(VN_TYPE_OPAQUE, value.Content());
        EXPECT_EQ(tlv, Bytes(sent.end() - static_cast<std::ptrdiff_t>(tlv.size()), sent.end()));
    }
    SilentDevices();
    const auto setIt = [&](const char* oid, uint8_t* bytes, int32_t length, uint32_t* valueType) {
        return module.SetSnmpRequestRaw(kHost, oid, bytes, length, valueType, 0, 0, nullptr,
                                        nullptr);
    };
    EXPECT_EQ(0, setIt(nullptr, set.Data(), 4, &type));
    EXPECT_EQ(0, setIt(kSysName, nullptr, 4, &type));
    EXPECT_EQ(0, setIt(kSysName, set.Data(), 4, nullptr));
    EXPECT_EQ(0, setIt(kSysName, set.Data(), -1, &type));
    EXPECT_EQ(0, setIt(kSysName, set.Data(), INT32_MIN, &type));
    EXPECT_THAT(Requests(), IsEmpty());
}

TEST_F(Directed, RequestsTellTheLogWhatTheyDo) {
    const Lines name = {"OID length [9]\n", "OID = [2b 06 01 02 01 01 05 00 ]\n"};
    const Lines end = {"VxSnmpMgr::~VxSnmpMgr()\n", "SCKRAW::~SCKRAW() [-1]\n"};
    const Lines get = Lines{"g_nAdapter [0]\n", "VxSNMP::VxSNMP()\n", "szBindIp []\n",
                            "SNMP::GetInformation - [10.77.1.11]\n", "SCKRAW::SCKRAW()\n"} +
                      RequestLines(9, "2b 06 01 02 01 01 01 00 ", SnmpGet(kSysDescr));
    Answer(SnmpAnswer(kSysDescr, 2, {0x01, 0xFF}));
    Text(text.Text(), 260, 2);
    ExpectLog(get + Lines{"0 - [01]\n", "1 - [ff]\n"} + end);
    log.Clear();
    Text(text.Text(), 260, 4);  // another type than expected
    ExpectLog(get + end);
    log.Clear();
    VnResponseRecord next;
    module.GetNextSnmpRequestRaw(kHost, kSysName, &next, 0, 0, nullptr, nullptr);
    ExpectLog(Lines{"VxSNMP::VxSNMP()\n", "SNMP::GetInformation1 - [10.77.1.11]\n",
                    "SCKRAW::SCKRAW()\n"} +
              name +
              Lines{"SNMP_MSG = [" + ToHex(Encode({kSysName, 5, {}, 0xA1}), " ") + "]\n",
                    "Copy Result [4312]\n", "OID = [2b 06 01 02 01 01 01 00 ]\n"} +
              end);
    log.Clear();
    SilentDevices();
    Set(set);
    const Bytes message = Encode({kSysName, 4, set.Content(), 0xA3});
    ExpectLog(Lines{"VxSNMP::VxSNMP()\n", "SNMP::SetInformationByStr - [10.77.1.11]\n",
                    "SCKRAW::SCKRAW()\n"} +
              name +
              Lines{"SNMP::SetInformation - [10.77.1.11]\n",
                    "SNMP_MSG = [" + ToHex(message, " ") + "]\n"} +
              Times(5, {"RecvFrom - Timeout\n"}) + end);
}

}  // namespace
}  // namespace vndiscover
