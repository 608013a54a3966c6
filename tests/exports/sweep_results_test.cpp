// What a sweep delivers for what devices answer.
#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SweepResults : public QuickLabTest {};

TEST_F(SweepResults, ComeInTheOrderOfTheAnswersDuplicatesIncluded) {
    DeviceIn("neta", {{SnmpText("B"), "10.77.1.12"},
                      {SnmpText("A"), "10.77.1.11"},
                      {SnmpText("B"), "10.77.1.12"}});
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.12=B", "10.77.1.11=A", "10.77.1.12=B", "end"));
}

TEST_F(SweepResults, AreOneFinalMessageWhereNobodyAnswers) {
    SilentDevices();
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
}

TEST_F(SweepResults, ReachAWindowOfAnotherThreadThatPumpsMessages) {
    DeviceIn("neta", {{SnmpText("A")}});
    DWORD resultThread = 0;
    window.onResult = [&](const Result&) { resultThread = GetCurrentThreadId(); };
    std::thread sweeping([&] {
        Sweep();
        PostMessageA(window.Handle(), WM_QUIT, 0, 0);
    });
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
    sweeping.join();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
    EXPECT_EQ(GetCurrentThreadId(), resultThread);
}

struct AnswerCase : Row {
    Bytes datagram;
    std::string value;
};
class SweepAnswer : public SweepResults, public testing::WithParamInterface<AnswerCase> {};

// Whatever arrives is a device; one that cannot be read is delivered without a value. All rows
// arrive between two good answers, which are not harmed.
TEST_P(SweepAnswer, IsDeliveredWithTheValueThatCanBeRead) {
    DeviceIn("neta", {{SnmpText("before")}, {GetParam().datagram}, {SnmpText("behind")}});
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=before", "10.77.1.2=" + GetParam().value,
                                            "10.77.1.2=behind", "end"));
}

SnmpMessage Response(const std::string& value) {
    SnmpMessage message;
    message.valueType = 4;
    message.value = TextBytes(value);
    message.pduType = 0xA2;
    return message;
}

Bytes WithTwoByteRequestId() {
    SnmpMessage message = Response("Model");
    message.requestId = {1, 1};
    return Encode(message);
}

Bytes WithErrorStatus(const std::string& value) {
    SnmpMessage message = Response(value);
    message.errorStatus = 2;
    return Encode(message);
}

Bytes InShortestForm(const std::string& value) {
    SnmpMessage message = Response(value);
    message.shortestLengths = true;
    return Encode(message);
}

Bytes Without(Bytes datagram, size_t count) { return Prefix(datagram, datagram.size() - count); }

INSTANTIATE_TEST_SUITE_P(
    Datagrams, SweepAnswer,
    testing::Values(
        AnswerCase{"NoBer", TextBytes("hello"), ""}, AnswerCase{"OneByte", {0x30}, ""},
        AnswerCase{"Zeros", Bytes(2048, 0), ""}, AnswerCase{"AllOnes", Bytes(2048, 0xFF), ""},
        AnswerCase{"Request", SnmpGet(kDefaultOid), ""}, AnswerCase{"EmptyValue", SnmpText(""), ""},
        AnswerCase{"ErrorWithoutValue", WithErrorStatus(""), ""},
        AnswerCase{"ErrorWithValue", WithErrorStatus("Model"), "Model"},
        AnswerCase{"AnotherOid", SnmpText("Model", kSysName), "Model"},
        AnswerCase{"IntegerAsItsBytes", SnmpAnswer(kDefaultOid, 2, {0x41, 0x42}), "AB"},
        AnswerCase{"ValueUpToItsZeroByte", SnmpText(std::string("ab\0cd", 5)), "ab"},
        AnswerCase{"CutInItsValue", Without(SnmpText("Model"), 2), "Mod"},
        AnswerCase{"CutBeforeItsValue", Without(SnmpText("Model"), 7), ""},
        AnswerCase{"TwoByteRequestId", WithTwoByteRequestId(), ""},
        AnswerCase{"LongestValue", SnmpText(std::string(127, 'x')), std::string(127, 'x')},
        // The first byte of a long-form length is taken for the length: 81 80 is 129 bytes, of
        // which 80 is the first.
        AnswerCase{"ValueOf128", SnmpText(std::string(128, 'x')), "\x80" + std::string(128, 'x')},
        AnswerCase{"MessageLengthInShortestForm", InShortestForm(std::string(120, 'x')), ""}),
    kNameOfRow);

TEST_F(SweepResults, LeaveAnEmptyDatagramOutAndGoOn) {
    DeviceIn("neta", {{Bytes()}, {SnmpText("A")}});
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
}

// Windows reports those that do not fit the receive buffer as errors.
TEST_F(SweepResults, LeaveOversizedDatagramsOutAndLoseNothingElse) {
    const Bytes oversized = SnmpText("A") + Bytes(3000, 0x20);
    DeviceIn("neta", {{SnmpText("A")},
                      {Prefix(oversized, 2049)},
                      {SnmpText("B")},
                      {oversized, {}, 0, 5},
                      {SnmpText("C")},
                      {Prefix(oversized, 2048)}});
    Sweep();
    EXPECT_THAT(window.Texts(),
                ElementsAre("10.77.1.2=A", "10.77.1.2=B", "10.77.1.2=C", "10.77.1.2=A", "end"));
}

class ResultFile : public QuickLabTest {
  protected:
    ~ResultFile() override { DeleteFileW(path.c_str()); }

    static std::wstring TempPath(const wchar_t* name) {
        wchar_t folder[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, folder);
        return folder + std::wstring(name);
    }
    static void Write(const std::wstring& path, const std::string& text) {
        FILE* file = _wfopen(path.c_str(), L"wb");
        std::fputs(text.c_str(), file);
        std::fclose(file);
    }
    // "(no file)" where there is none.
    static std::string Read(const std::wstring& path) {
        FILE* file = _wfopen(path.c_str(), L"rb");
        if (!file) return "(no file)";
        char block[4096];
        std::string text(block, std::fread(block, 1, sizeof block, file));
        std::fclose(file);
        return text;
    }

    std::wstring path = TempPath(L"devices \u00e9.csv");
};

TEST_F(ResultFile, HoldsALinePerDeviceWithCrLfAndUnescapedQuotes) {
    DeviceIn("neta", {{SnmpText("Model \"X\", 4")},
                      {SnmpText(""), "10.77.1.11"},
                      {SnmpText(std::string(127, 'x')), "10.77.1.12"},
                      {SnmpText("two\nlines"), "10.77.1.13"}});
    Write(path, "something else");
    Sweep(path.c_str());
    EXPECT_EQ("\"10.77.1.2\",\"Model \"X\", 4\"\r\n\"10.77.1.11\",\"\"\r\n\"10.77.1.12\",\"" +
                  std::string(127, 'x') + "\"\r\n\"10.77.1.13\",\"two\r\nlines\"\r\n",
              Read(path));
}

TEST_F(ResultFile, IsEmptyWhereNobodyAnswers) {
    SilentDevices();
    Write(path, "something else");
    Sweep(path.c_str());
    EXPECT_EQ("", Read(path));
}

TEST_F(ResultFile, IsWrittenWithoutAWindow) {
    DeviceIn("netb", {{SnmpText("B")}});
    module.DiscoverDevices(nullptr, 0, 0, 0, path.c_str(), nullptr, nullptr);
    EXPECT_EQ("\"10.77.2.2\",\"B\"\r\n", Read(path));
}

TEST_F(ResultFile, IsClosedAtTheEndSoThatALaterSweepWithoutPathWritesNowhere) {
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep(path.c_str());
    EXPECT_NE(0, DeleteFileW(path.c_str())) << "still open";
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end", "10.77.1.2=A", "end"));
    EXPECT_EQ("(no file)", Read(path));
}

TEST_F(ResultFile, IsLeftOutWhereItCannotBeOpened) {
    const std::wstring kept = TempPath(L"kept.csv");
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep(kept.c_str());
    window.results.clear();
    Sweep(L"Z:\\no such folder\\devices.csv");
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
    EXPECT_EQ("\"10.77.1.2\",\"A\"\r\n", Read(kept)) << "the file of the sweep before";
    DeleteFileW(kept.c_str());
}

TEST_F(ResultFile, IsLeftOutWhereItsPathIsTooLong) {
    const std::wstring folder = TempPath(L"");
    const std::wstring longPath = folder + std::wstring(260 - folder.size(), L'x');
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep(longPath.c_str());
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
    EXPECT_EQ("(no file)", Read(longPath.substr(0, 259))) << "a cut path is some other file";
}

int WSAAPI NoNames(const sockaddr*, socklen_t, PCHAR, DWORD, PCHAR, DWORD, INT) { return EAI_FAIL; }

TEST_F(ResultFile, LeavesOutADeviceWithoutAnAddress) {
    const ImportPatch patch(module.Handle(), "getnameinfo", NoNames);
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep(path.c_str());
    EXPECT_THAT(window.Texts(), ElementsAre("=A", "end"));
    EXPECT_EQ("", Read(path));
}

}  // namespace
}  // namespace vndiscover
