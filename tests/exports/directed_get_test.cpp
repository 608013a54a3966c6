// What directed reads hand to the host, and that it stays within the host's buffers.
#include "exports/support/guarded_buffer.h"
#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

using testing::IsEmpty;

constexpr char kHost[] = "10.77.1.11";
constexpr char kOtherHost[] = "10.77.1.12";

class DirectedGet : public QuickLabTest {
  protected:
    // Time-outs and retries of any kind: they change nothing.
    int32_t Raw(uint8_t* value, int32_t size, uint32_t* type, const char* host = kHost) {
        return module.GetSnmpRequestRaw(host, kSysDescr, value, size, type, 5000, 9, nullptr,
                                        nullptr);
    }
    int32_t Text(char* text, int32_t size, uint32_t expectedType, const char* host = kHost) {
        return module.GetSnmpRequest(host, kSysDescr, text, size, expectedType, 1, 0, nullptr,
                                     nullptr);
    }
    int32_t Next(VnResponseRecord* record) {
        return module.GetNextSnmpRequestRaw(kHost, kSysDescr, record, 0, 99, nullptr, nullptr);
    }
};

// The bytes at the front, everything behind them as it was.
void ExpectHolds(Bytes bytes, const GuardedBuffer& buffer) {
    bytes.resize(static_cast<size_t>(buffer.Size()), GuardedBuffer::kFill);
    EXPECT_EQ(bytes, buffer.Content());
    EXPECT_TRUE(buffer.GuardsStand());
}

// A name of 200 bytes, more than a record has room for, and a value of 255: nothing longer can be
// told to the module.
Bytes LongestAnswer() {
    return Hex("30 82 00 FF 02 01 00 04 01 70 A2 82 00 F0 02 01 01 02 01 00 02 01 00"
               "30 82 00 E0 30 82 00 E0 06 C8") +
           Bytes(200, 0x2B) + Hex("04 FF") + Bytes(255, 'y') + Bytes(40, 'z');
}

TEST_F(DirectedGet, RawValuesArriveWithTheirTypeAndAZeroByte) {
    struct {
        uint8_t type;
        Bytes value;
    } const rows[] = {{VN_TYPE_INTEGER, {0x7F, 0xFF}},
                      {VN_TYPE_OCTET_STRING, {0, 1, 0}},
                      {VN_TYPE_OCTET_STRING, {}},
                      {VN_TYPE_NULL, {}},
                      {VN_TYPE_TIME_TICKS, {0, 255, 255, 255}},
                      {VN_TYPE_OCTET_STRING, Bytes(127, 'x')},
                      {VN_TYPE_OCTET_STRING, Bytes(255, 'y')}};
    for (const auto& row : rows) {
        const size_t size = row.value.size();
        DeviceIn("neta",
                 {{size == 255 ? LongestAnswer() : SnmpAnswer(kSysDescr, row.type, row.value)}});
        GuardedBuffer value(256);
        uint32_t type = 99;
        EXPECT_EQ(static_cast<int32_t>(size), Raw(value.Data(), 256, &type));
        EXPECT_EQ(row.type, type);
        ExpectHolds(size == 0 ? Bytes() : row.value + Bytes{0}, value);
    }
}

TEST_F(DirectedGet, TextIsWrittenAsTheExpectedTypeHasIt) {
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
        {2, {0xFF, 0xFE}, 2, 2, "65534"},
        {2, {0x7F, 0xFF, 0xFF, 0xFF}, 2, 4, "2147483647"},
        {2, {0xFF, 0xFF, 0xFF, 0xFF}, 2, 4, "-1"},
        {2, {0x80, 0, 0, 0}, 2, 4, "-2147483648"},
        {2, {1, 0, 0, 0, 2}, 2, 5, "2"},
        {4, letters, 2, 0, nullptr},
        {2, letters, 4, 0, nullptr},
        {0x41, letters, 2, 0, nullptr},
        {0x41, letters, 0x41, 2, nullptr},  // agreed upon, but no type that has a text
    };
    for (const auto& row : rows) {
        DeviceIn("neta", {{SnmpAnswer(kSysDescr, row.answered, row.value)}});
        GuardedBuffer text(12);
        EXPECT_EQ(row.result, Text(text.Text(), 12, row.expected));
        ExpectHolds(row.text ? TextBytes(row.text) + Bytes{0} : Bytes(), text);
    }
    DeviceIn("neta", {{SnmpText("Model 1")}});
    char text[VN_INFORMATION_SIZE] = {};
    EXPECT_EQ(7, module.GetSnmpInformation(kHost, text, nullptr, nullptr));
    EXPECT_STREQ("Model 1", text);
}

// Under Wine the runtime lets a null buffer pass, on Windows it may end the process.
errno_t CopyIntoSomething(char* out, rsize_t size, const char* text) {
    EXPECT_NE(nullptr, out);
    return strcpy_s(out, size, text);
}

// The bounded copies of the C runtime decide: a raw value is zeroed, a text becomes empty. Its
// invalid-parameter handler cannot be set under Wine, where it does nothing.
TEST_F(DirectedGet, BuffersAreNeverOverrun) {
    Devices([](const Request& request) {
        const bool isNumber = request.local == kOtherHost;
        return std::vector<Answer>{
            {isNumber ? SnmpAnswer(kSysDescr, 2, {5, 0xF5, 0xE0, 0xFF}) : SnmpText("LaserPro")}};
    });
    for (const int32_t size : {9, 8, 1, 0, -1, INT32_MIN}) {
        const auto room = static_cast<size_t>(std::max(size, 0));
        GuardedBuffer raw(room), text(room), number(room);
        uint32_t type = 0;
        EXPECT_EQ(8, Raw(raw.Data(), size, &type));
        EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
        EXPECT_EQ(8, Text(text.Text(), size, VN_TYPE_OCTET_STRING));
        EXPECT_EQ(4, Text(number.Text(), size, VN_TYPE_INTEGER, kOtherHost));
        if (size == 9) {
            ExpectHolds(TextBytes("LaserPro") + Bytes{0}, raw);
            ExpectHolds(TextBytes("LaserPro") + Bytes{0}, text);
            ExpectHolds(TextBytes("99999999") + Bytes{0}, number);
            continue;
        }
        ExpectHolds(Bytes(room, 0), raw);
        for (const GuardedBuffer* buffer : {&text, &number}) {
            EXPECT_TRUE(buffer->GuardsStand());
            EXPECT_TRUE(room == 0 || buffer->Content()[0] == 0);
        }
    }
    const ImportPatch strict(module.Handle(), "strcpy_s", CopyIntoSomething);
    uint32_t type = 0;
    EXPECT_EQ(8, Raw(nullptr, 256, &type));
    EXPECT_EQ(VN_TYPE_OCTET_STRING, type);
    EXPECT_EQ(8, Text(nullptr, 256, VN_TYPE_OCTET_STRING));
    EXPECT_EQ(8, module.GetSnmpInformation(kHost, nullptr, nullptr, nullptr));
}

TEST_F(DirectedGet, TheFirstDatagramIsTheAnswerWhateverItIs) {
    SnmpMessage other = {kDefaultOid, 4, TextBytes("from elsewhere"), 0xA7, "other", {42}, 5};
    DeviceIn("neta", {{Encode(other), "10.77.1.15"}, {SnmpText("Model")}});
    GuardedBuffer value(256);
    EXPECT_EQ(14, Raw(value.Data(), 256, nullptr));
    EXPECT_STREQ("from elsewhere", value.Text());

    DeviceIn("neta", {{TextBytes("no SNMP")}, {SnmpText("Model")}});
    GuardedBuffer untouched(256);
    uint32_t type = 99;
    EXPECT_EQ(0, Raw(untouched.Data(), 256, &type));
    EXPECT_EQ(0u, type);
    EXPECT_TRUE(untouched.IsUntouched());
    EXPECT_THAT(waits.Silent(), IsEmpty());
}

TEST_F(DirectedGet, NextFillsTheRecordFieldByField) {
    struct {
        Bytes datagram;
        uint16_t type;
        Bytes value, oid;
    } const rows[] = {
        {SnmpAnswer(".1.3.6.1.2.1.1.2.0", 6, {0x2B, 6, 1, 4}),
         6,
         {0x2B, 6, 1, 4},
         OidContent(".1.3.6.1.2.1.1.2.0")},
        // An error is delivered like any other answer.
        {Encode({kSysDescr, 5, {}, 0xA2, "sesame", {1}, 2}), 5, {}, OidContent(kSysDescr)},
        {LongestAnswer(), 4, Bytes(255, 'y'), Bytes(128, 0x2B)},
    };
    for (const auto& row : rows) {
        DeviceIn("neta", {{row.datagram}});
        VnResponseRecord record, expected = {};
        std::memset(&record, 0xA5, sizeof record);
        std::memset(expected.reserved, 0xA5, sizeof expected.reserved);
        expected.valueType = row.type;
        expected.valueLength = static_cast<uint16_t>(row.value.size());
        std::memcpy(expected.address, kHost, sizeof kHost);
        std::copy(row.value.begin(), row.value.end(), expected.value);
        std::copy(row.oid.begin(), row.oid.end(), expected.oid);
        expected.oidLength = static_cast<uint16_t>(row.oid.size());
        EXPECT_EQ(expected.valueLength, Next(&record));
        EXPECT_EQ(0, std::memcmp(&expected, &record, sizeof record)) << row.type;
        EXPECT_EQ(expected.valueLength, Next(nullptr));
    }
}

}  // namespace
}  // namespace vndiscover
