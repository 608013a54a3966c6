// The registry switches of the debug log, and the destinations of its lines.
#include <regex>
#include <thread>

#include "exports/support/network_test.h"

namespace vndiscover {
namespace {

constexpr char kFile[] = "VxAdmSvc.log";
constexpr char kSpoken[] = "VxSnmpMgr::StopDiscover\n";

class DebugSwitches : public testing::Test {
  protected:
    ~DebugSwitches() override { DeleteFileA(kFile); }

    // Makes the module log a line.
    static void Speak(const Module& module) { module.StopDiscoverSnmp(); }
    // Makes the module read its switches.
    static void StartAThread() {
        std::thread([] {}).join();
    }
    // The lines of the file, without time stamps.
    static Lines FileLines() {
        SYSTEMTIME now;
        GetLocalTime(&now);
        char date[16];
        std::snprintf(date, sizeof date, "%02d/%02d/%04d", now.wMonth, now.wDay, now.wYear);
        const std::regex stamp(date + std::string(" \\d\\d:\\d\\d:\\d\\d:\\d\\d\\d "));
        Lines lines;
        std::ifstream file(kFile, std::ios::binary);
        for (std::string line; std::getline(file, line);) {
            EXPECT_TRUE(std::regex_match(line.substr(0, 24), stamp)) << line;
            lines.push_back(line.substr(24));
        }
        return lines;
    }

    RegistrySwitches switches;
    LogCapture log;
};

TEST_F(DebugSwitches, DebugSendsLinesToTheDebuggerFromLoadToUnload) {
    { const Module off; }
    EXPECT_THAT(log.Lines(), IsEmpty());
    switches.SetOn("Debug");
    { const Module on; }
    EXPECT_THAT(log.Lines(), ElementsAre("VxSNMP::VxSNMP()\n", "VxSoapMgr::VxSoapMgr()\n",
                                         "VxSnmpMgr::~VxSnmpMgr()\n", "VxSoapMgr::~VxSoapMgr()\n"));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(kFile));
}

TEST_F(DebugSwitches, Dbg2LogWritesTheFileUntilTheModuleIsUnloaded) {
    switches.SetOn("Dbg2Log");
    {
        const Module module;
        switches.Remove("Dbg2Log");
        StartAThread();
        Speak(module);
        // Only a missing key is logged, for each of the two switches when a thread starts and ends.
        switches.RemoveAll();
        StartAThread();
    }
    Speak(Module());
    EXPECT_THAT(log.Lines(), IsEmpty());
    const Lines missing(
        2 * 2 + 2, "GetRegValueLong - Open registry error - 2 for Software\\Varnell Osk\\VnInst\r");
    EXPECT_EQ(
        (Lines{"VxSNMP::VxSNMP()\r", "VxSoapMgr::VxSoapMgr()\r", "VxSnmpMgr::StopDiscover\r"} +
         missing + Lines{"VxSnmpMgr::~VxSnmpMgr()\r", "VxSoapMgr::~VxSoapMgr()\r"}),
        FileLines());
}

TEST_F(DebugSwitches, CountIfUpTo4BytesWhateverTheirType) {
    const struct {
        DWORD type;
        Bytes data;
        bool isOn;
    } rows[] = {{REG_DWORD, {0, 0, 0, 0}, false},
                {REG_DWORD, {0, 0, 0, 0x80}, true},
                {REG_SZ, {'0', 0}, true},
                {REG_BINARY, {1}, true},
                {REG_BINARY, {}, false},
                {REG_BINARY, {1, 1, 1, 1, 1}, false}};  // does not fit, so the read fails
    for (const auto& row : rows) {
        switches.Set("Debug", row.type, row.data);
        log.Clear();
        Speak(Module());
        EXPECT_EQ(row.isOn, log.Has(kSpoken)) << row.type << ' ' << ToHex(row.data);
    }
}

TEST_F(DebugSwitches, DebugFollowsTheRegistryAtEachThread) {
    const Module module;
    switches.SetOn("Debug");
    Speak(module);
    EXPECT_FALSE(log.Has(kSpoken)) << "nobody has looked yet";
    StartAThread();
    Speak(module);
    EXPECT_TRUE(log.Has(kSpoken));
    switches.Remove("Debug");
    StartAThread();
    log.Clear();
    Speak(module);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

// With both switches on, the debugger gets all lines and the file the narrow ones.
TEST_F(DebugSwitches, WideLinesNeverReachTheFile) {
    switches.SetOn("Debug");
    switches.SetOn("Dbg2Log");
    const Module module;
    const ScriptedNetwork network(module);
    module.DiscoverDevicesByOIDjson(nullptr, 0, 0, 0, L"{}", nullptr, nullptr, nullptr);
    Lines narrow;
    for (const std::string& line : log.Lines()) {
        const bool isWide = line == "wszDisOID []\n" || line.rfind("Should not come here", 0) == 0;
        if (!isWide) narrow.push_back(line.substr(0, line.size() - 1) + '\r');
    }
    EXPECT_EQ(narrow.size() + 2, log.Lines().size());
    EXPECT_EQ(narrow, FileLines());
}

TEST_F(DebugSwitches, UnwritableFileOnlyLosesLines) {
    CreateDirectoryA(kFile, nullptr);
    switches.SetOn("Dbg2Log");
    Speak(Module());
    EXPECT_NE(0, RemoveDirectoryA(kFile));
}

// wvsprintfA cuts at 1,024 characters, of which Wine drops the last. The time stamp is extra.
TEST_F(DebugSwitches, MessagesAreCutAt1024Characters) {
    switches.SetOn("Debug");
    const Module module;
    module.GetSnmpRequestRaw(std::string(2000, '9').c_str(), "", nullptr, 0, nullptr, 0, 0, nullptr,
                             nullptr);
    const std::string whole = "SNMP::GetInformation - [" + std::string(2000, '9');
    EXPECT_THAT(log.Lines(), Contains(AnyOf(whole.substr(0, 1024), whole.substr(0, 1023))));
}

}  // namespace
}  // namespace vndiscover
