// The registry switches of the debug log, and where its lines go.
#include <fstream>
#include <regex>

#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// The module's log file in the current folder.
class LogFile {
  public:
    ~LogFile() { DeleteFileA(kName); }

    bool Exists() const { return GetFileAttributesA(kName) != INVALID_FILE_ATTRIBUTES; }
    Lines Read() const {
        Lines lines;
        std::ifstream file(kName, std::ios::binary);
        for (std::string line; std::getline(file, line);) lines.push_back(line + '\n');
        return lines;
    }

  private:
    static constexpr char kName[] = "VxAdmSvc.log";
};

class DebugSwitches : public testing::Test {
  protected:
    // A line that the module writes at once.
    static void Speak(const Module& module) { module.StopDiscoverSnmp(); }
    static constexpr char kSpoken[] = "VxSnmpMgr::StopDiscover\n";
    // What the file holds behind each line's time stamp.
    Lines FileTexts() const {
        Lines texts;
        for (const std::string& line : file.Read()) texts.push_back(line.substr(24));
        return texts;
    }

    RegistrySwitches switches;
    LogCapture log;
    LogFile file;
};

TEST_F(DebugSwitches, OffMeansNoLineAndNoFile) {
    const Module module;
    Speak(module);
    EXPECT_THAT(log.Lines(), IsEmpty());
    EXPECT_FALSE(file.Exists());
}

TEST_F(DebugSwitches, DebugSendsLinesToTheDebuggerFromLoadToUnload) {
    switches.SetOn("Debug");
    { const Module module; }
    EXPECT_THAT(log.Lines(), ElementsAre("VxSNMP::VxSNMP()\n", "VxSoapMgr::VxSoapMgr()\n",
                                         "VxSnmpMgr::~VxSnmpMgr()\n", "VxSoapMgr::~VxSoapMgr()\n"));
    EXPECT_FALSE(file.Exists());
}

TEST_F(DebugSwitches, Dbg2LogAppendsLinesToTheFileWithTheirTime) {
    switches.SetOn("Dbg2Log");
    SYSTEMTIME before;
    GetLocalTime(&before);
    for (int i = 0; i < 2; ++i) Speak(Module());
    EXPECT_THAT(log.Lines(), IsEmpty());
    const Lines once = {"VxSNMP::VxSNMP()\r\n", "VxSoapMgr::VxSoapMgr()\r\n",
                        "VxSnmpMgr::StopDiscover\r\n", "VxSnmpMgr::~VxSnmpMgr()\r\n",
                        "VxSoapMgr::~VxSoapMgr()\r\n"};
    EXPECT_EQ(Times(2, once), FileTexts());
    const std::regex stamp(
        "(\\d\\d)/(\\d\\d)/(\\d\\d\\d\\d) \\d\\d:\\d\\d:\\d\\d:\\d\\d\\d [^ ].*\r\n");
    std::smatch parts;
    const std::string first = file.Read().at(0);
    ASSERT_TRUE(std::regex_match(first, parts, stamp)) << first;
    EXPECT_EQ(before.wMonth, std::stoi(parts[1]));
    EXPECT_EQ(before.wDay, std::stoi(parts[2]));
    EXPECT_EQ(before.wYear, std::stoi(parts[3]));
}

struct ValueCase : Row {
    DWORD type;
    Bytes data;
    bool isOn;
};
class SwitchValue : public DebugSwitches, public testing::WithParamInterface<ValueCase> {};

TEST_P(SwitchValue, CountsByItsFirstFourBytesWhateverItsType) {
    switches.Set("Debug", GetParam().type, GetParam().data);
    const Module module;
    Speak(module);
    EXPECT_EQ(GetParam().isOn, log.Has(kSpoken));
}

INSTANTIATE_TEST_SUITE_P(
    Types, SwitchValue,
    testing::Values(ValueCase{"DwordZero", REG_DWORD, {0, 0, 0, 0}, false},
                    ValueCase{"DwordTopBit", REG_DWORD, {0, 0, 0, 0x80}, true},
                    ValueCase{"TextZero", REG_SZ, {'0', 0}, true},
                    ValueCase{"EmptyText", REG_SZ, {0}, false},
                    ValueCase{"BinaryOneByte", REG_BINARY, {1}, true},
                    ValueCase{"BinaryFourthByte", REG_BINARY, {0, 0, 0, 1}, true},
                    ValueCase{"BinaryZeros", REG_BINARY, {0, 0, 0, 0}, false},
                    ValueCase{"BinaryEmpty", REG_BINARY, {}, false},
                    // Does not fit four bytes, so the read fails.
                    ValueCase{"BinaryFiveBytes", REG_BINARY, {1, 1, 1, 1, 1}, false},
                    ValueCase{"LongText", REG_SZ, {'y', 'e', 's', '!', 0}, false}),
    kNameOfRow);

TEST_F(DebugSwitches, FollowTheRegistryWhenAThreadStartsOrEnds) {
    const auto notify = [] { std::thread([] {}).join(); };
    const Module module;
    switches.SetOn("Debug");
    Speak(module);
    EXPECT_FALSE(log.Has(kSpoken)) << "nobody has looked yet";
    notify();
    Speak(module);
    EXPECT_TRUE(log.Has(kSpoken));
    switches.Remove("Debug");
    notify();
    log.Clear();
    Speak(module);
    EXPECT_FALSE(log.Has(kSpoken));
}

TEST_F(DebugSwitches, Dbg2LogStaysOnUntilTheModuleIsUnloaded) {
    switches.SetOn("Dbg2Log");
    Module module;
    switches.Remove("Dbg2Log");
    std::thread([] {}).join();
    Speak(module);
    EXPECT_EQ("VxSnmpMgr::StopDiscover\r\n", FileTexts().back());
    module.Reload();
    const size_t lines = file.Read().size();
    Speak(module);
    EXPECT_EQ(lines, file.Read().size());
}

// Both switches on, a sweep with wide lines: the debugger sees all of them, the file the narrow
// ones.
TEST_F(DebugSwitches, WideLinesNeverReachTheFile) {
    switches.SetOn("Debug");
    switches.SetOn("Dbg2Log");
    const Agents agents;
    const Module module;
    const Waits waits(module);
    module.DiscoverDevicesByOIDjson(nullptr, 0, 0, 0, L"{}", nullptr, nullptr, nullptr);
    const std::string wide =
        "Should not come here set set DisOID to \".1.3.6.1.4.1.5963.43.5.1.1.1.1\"\n";
    EXPECT_THAT(log.Lines(), Contains(wide));
    EXPECT_THAT(log.Lines(), Contains("wszDisOID []\n"));
    Lines narrow;
    for (std::string line : log.Lines()) {
        if (line != wide && line != "wszDisOID []\n") {
            narrow.push_back(line.substr(0, line.size() - 1) + "\r\n");
        }
    }
    EXPECT_EQ(narrow, FileTexts());
}

TEST_F(DebugSwitches, AFileThatCannotBeOpenedDropsLinesOnly) {
    CreateDirectoryA("VxAdmSvc.log", nullptr);
    switches.SetOn("Dbg2Log");
    { const Module module; }
    EXPECT_NE(0, RemoveDirectoryA("VxAdmSvc.log"));
}

// wvsprintfA cuts at 1,024 characters, of which Wine's loses the last. The stamp comes on top of
// them.
TEST_F(DebugSwitches, CutAMessageAt1024Characters) {
    switches.SetOn("Debug");
    const Module module;
    module.GetSnmpRequestRaw(std::string(2000, '9').c_str(), "", nullptr, 0, nullptr, 0, 0, nullptr,
                             nullptr);
    const std::string whole = "SNMP::GetInformation - [" + std::string(2000, '9');
    EXPECT_THAT(log.Lines(), Contains(AnyOf(whole.substr(0, 1024), whole.substr(0, 1023))));
}

}  // namespace
}  // namespace vndiscover
