// What a sweep delivers for what devices answer: messages, lines of the result file and of the log.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

class SweepResults : public LoggedTest {
  protected:
    ~SweepResults() override { DeleteFileW(path.c_str()); }

    // "(no file)" where there is none.
    static std::string Read(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        if (!file) return "(no file)";
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::wstring path = L"devices \u00e9.csv";
};

TEST_F(SweepResults, AreAMessageAndThenALineEachAdapterByAdapterInTheOrderOfTheAnswers) {
    Devices([](const Request& request) {
        if (request.net == "netb") return Answers{{SnmpText("C")}};
        return Answers{{SnmpText("B \"2\", 4"), "10.77.1.12"},
                       {SnmpText("two\nlines")},
                       {SnmpText(""), "10.77.1.11"},
                       {SnmpText("B \"2\", 4"), "10.77.1.12"}};
    });
    std::ofstream(std::filesystem::path(path)) << std::string(1000, 'x');
    Lines toldLast;
    std::vector<size_t> asked;
    window.onResult = [&](const Result&) {
        toldLast.push_back(log.Lines().back());
        asked.push_back(agents->Requests().size());
    };
    Sweep(path.c_str());
    EXPECT_THAT(window.Texts(),
                ElementsAre("10.77.1.12=B \"2\", 4", "10.77.1.2=two\nlines",
                            "10.77.1.11=", "10.77.1.12=B \"2\", 4", "10.77.2.2=C", "end"));
    EXPECT_EQ(
        "\"10.77.1.12\",\"B \"2\", 4\"\r\n\"10.77.1.2\",\"two\r\nlines\"\r\n\"10.77.1.11\",\"\"\r\n"
        "\"10.77.1.12\",\"B \"2\", 4\"\r\n\"10.77.2.2\",\"C\"\r\n",
        Read(path));
    const Lines written = {
        "m_fp = [\"10.77.1.12\",\"B \"2\", 4\"\n]\n", "m_fp = [\"10.77.1.2\",\"two\nlines\"\n]\n",
        "m_fp = [\"10.77.1.11\",\"\"\n]\n", "m_fp = [\"10.77.1.12\",\"B \"2\", 4\"\n]\n"};
    ExpectLog(
        SweepLines(AnsweredLines({"10.77.1.12", "10.77.1.2", "10.77.1.11", "10.77.1.12"}, written),
                   AnsweredLines({"10.77.2.2"}, {"m_fp = [\"10.77.2.2\",\"C\"\n]\n"})));
    EXPECT_THAT(toldLast, ElementsAre(" ==== We have [4] devices on the network. ==== \n",
                                      written[0], written[1], written[2],
                                      " ==== We have [1] devices on the network. ==== \n",
                                      "SNMP::Discover - ended\n"));
    EXPECT_THAT(asked, ElementsAre(1, 1, 1, 1, 2, 2)) << "adapters before the message";
}

TEST_F(SweepResults, OfIPv6HaveNoZone) {
    Devices([](const Request& request) {
        if (request.net == "netb") return Answers{{SnmpText("C")}};
        return Answers{{SnmpText("B"), "fe80::1:12"}, {SnmpText("A"), "fe80::1:11"}};
    });
    Sweep(nullptr, 1);
    EXPECT_THAT(window.Texts(), ElementsAre("fe80::1:12=B", "fe80::1:11=A", "fe80::2:2=C", "end"));
    EXPECT_TRUE(log.Has("tszRecvAddr = [fe80::1:12]\n"));
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

// Whatever arrives is a device, one that cannot be read without a value, and harms none that comes
// behind it. Only empty and oversized datagrams, which Windows reports as errors, are left out: the
// network before was silent, which an empty one must not be taken for.
TEST_F(SweepResults, AreWhateverArrivesWithTheValueThatCanBeRead) {
    const auto response = [](const std::string& value, Bytes requestId, uint8_t errorStatus = 0,
                             bool shortestLengths = false) {
        return Encode({kDefaultOid, 4, TextBytes(value), 0xA2, "sesame", requestId, errorStatus,
                       shortestLengths});
    };
    const Bytes model = SnmpText("Model");
    const Bytes oversized = model + Bytes(3000, 0x20);
    const char* const leftOut = "(left out)";
    const std::pair<Bytes, std::string> rows[] = {
        {TextBytes("hello"), ""},
        {{0x30}, ""},
        {Bytes(), leftOut},
        {Bytes(2048, 0), ""},
        {Bytes(2048, 0xFF), ""},
        {Prefix(oversized, 2049), leftOut},
        {Prefix(oversized, 2048), "Model"},
        {oversized, leftOut},
        {SnmpGet(kDefaultOid), ""},
        {Encode({kDefaultOid, 4, TextBytes("set"), 0xA3}), "set"},  // nobody asks what it is
        {Encode({kDefaultOid, 4, TextBytes("report"), 0xA8}), ""},
        {SnmpText(""), ""},
        {response("", {1}, 2), ""},
        {response("Model", {1}, 2), "Model"},
        {SnmpText("Model", kSysName), "Model"},
        {SnmpAnswer(kDefaultOid, 2, {0x41, 0x42}), "AB"},
        {SnmpText(std::string("ab\0cd", 5)), "ab"},
        {Prefix(model, model.size() - 2), "Mod"},
        {Prefix(model, model.size() - 7), ""},
        {response("Model", {1, 1}), ""},
        {SnmpText(std::string(127, 'x')), std::string(127, 'x')},
        // The first byte of a long-form length is taken for the length: 81 80 is 129 bytes, of
        // which 80 is the first.
        {SnmpText(std::string(128, 'x')), "\x80" + std::string(128, 'x')},
        {response(std::string(120, 'x'), {1}, 0, true), ""}};
    Answers answers;
    Lines expected;
    for (const auto& [datagram, value] : rows) {
        answers.push_back({datagram});
        answers.push_back({model});
        if (value != leftOut) expected.push_back("10.77.2.2=" + value);
        expected.push_back("10.77.2.2=Model");
    }
    DeviceIn("netb", Answers(answers.size(), {SnmpText("of the sweep before")}));
    Sweep();
    window.results.clear();
    DeviceIn("netb", answers);
    Sweep();
    expected.push_back("end");
    EXPECT_THAT(window.Texts(), ElementsAreArray(expected));
}

TEST_F(SweepResults, GoToAFileThatIsOpenForOneSweepAndNeedsNoWindow) {
    DeviceIn("neta", {{SnmpText("A")}});
    module.DiscoverDevices(nullptr, 0, 0, 0, path.c_str(), nullptr, nullptr);
    EXPECT_EQ("\"10.77.1.2\",\"A\"\r\n", Read(path));
    EXPECT_NE(0, DeleteFileW(path.c_str())) << "still open";
    // A path that is too long is not cut to that of some other file.
    wchar_t folder[MAX_PATH] = {};
    const DWORD length = GetTempPathW(MAX_PATH, folder);
    const std::wstring tooLong = folder + std::wstring(260 - length, L'x');
    for (const wchar_t* none :
         {(const wchar_t*)nullptr, L"", L"Z:\\no such folder\\devices.csv", tooLong.c_str()}) {
        Sweep(none);
        EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "end"));
        window.results.clear();
    }
    EXPECT_EQ("(no file)", Read(path));
    EXPECT_EQ("(no file)", Read(tooLong.substr(0, 259)));
}

TEST_F(SweepResults, OfADeviceWithoutAnAddressAreNotWritten) {
    struct Names {
        static int WSAAPI Fail(const sockaddr*, socklen_t, PCHAR, DWORD, PCHAR, DWORD, INT) {
            return EAI_FAIL;
        }
    };
    const ImportPatch patch(module.Handle(), "getnameinfo", Names::Fail);
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep(path.c_str());
    EXPECT_THAT(window.Texts(), ElementsAre("=A", "end"));
    EXPECT_EQ("", Read(path));
}

}  // namespace
}  // namespace vndiscover
