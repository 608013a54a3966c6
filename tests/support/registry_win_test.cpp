// The registry reader and the wide writer of the log, beyond what the exports use of them.
#include "support/registry.h"

#include <gtest/gtest.h>

#include "helpers/unit_log.h"
#include "support/debug_switches.h"

namespace vndiscover {
namespace {

using Lines = std::vector<std::string>;

class RegistryTest : public testing::Test {
  protected:
    RegistryTest() { RegCreateKeyA(HKEY_LOCAL_MACHINE, kPath, &key); }
    ~RegistryTest() override {
        RegCloseKey(key);
        RegDeleteKeyA(HKEY_LOCAL_MACHINE, kPath);
        RegDeleteKeyA(HKEY_LOCAL_MACHINE, "Software\\Varnell Osk");
        g_debugSwitches = {0, 0};
    }
    void Set(const char* name, DWORD value) {
        RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4);
    }

    static constexpr char kPath[] = "Software\\Varnell Osk\\Debug";
    static constexpr wchar_t kWidePath[] = L"Software\\Varnell Osk\\Debug";
    HKEY key = nullptr;
    UnitLog log;
};

TEST_F(RegistryTest, ReadsANumberOrGivesTheDefaultAndTellsWhy) {
    Set("Count", 0xFFFFFFFE);
    EXPECT_EQ(-2, GetRegValueLong(HKEY_LOCAL_MACHINE, kPath, "Count", 7, 0));
    EXPECT_EQ(-2, GetRegValueLong(HKEY_LOCAL_MACHINE, kWidePath, L"Count", 7, KEY_QUERY_VALUE));
    for (const char* name : {"Debug", "Dbg2Log", "debug", "Other"}) {
        EXPECT_EQ(7, GetRegValueLong(HKEY_LOCAL_MACHINE, kPath, name, 7, 0));
    }
    EXPECT_EQ(7, GetRegValueLong(HKEY_LOCAL_MACHINE, kWidePath, L"Debug", 7, 0));
    EXPECT_EQ(7, GetRegValueLong(HKEY_LOCAL_MACHINE, "No\\Key", "Debug", 7, 0));
    EXPECT_EQ(7, GetRegValueLong(HKEY_LOCAL_MACHINE, L"No\\Key", L"Debug", 7, 0));
    EXPECT_EQ(7, GetRegValueLong(HKEY_LOCAL_MACHINE, kPath, "Count", 7, KEY_CREATE_LINK));
    EXPECT_EQ(0, IsRunningUnderWow64());
    EXPECT_EQ((Lines{"GetRegValueLong??? - Get value error - 2 for debug\n",
                     "GetRegValueLong??? - Get value error - 2 for Other\n",
                     "GetRegValueLong - Get value error - 2 for Debug\n",
                     "GetRegValueLong - Open registry error - 2 for No\\Key\n",
                     "GetRegValueLong - Open registry error - 2 for No\\Key\n",
                     "GetRegValueLong??? - Get value error - 5 for Count\n"}),
              log.Lines());
}

TEST_F(RegistryTest, HoldsTheSwitchesUnderTheKeyDebugWhereNoOtherIsNamed) {
    LoadDebugSwitches(nullptr, 5);
    EXPECT_EQ(5, IsDebugLogEnabled());
    Set("Debug", 2);
    Set("Dbg2Log", 3);
    EXPECT_EQ(3, LoadDebugSwitchesW(nullptr, 0));
    EXPECT_EQ(1, g_debugSwitches.debug);
    EXPECT_EQ(1, g_debugSwitches.dbg2Log);
    g_debugSwitches = {0, 0};
    LoadDebugSwitches(nullptr, 0);
    EXPECT_EQ(1, g_debugSwitches.debug);
    EXPECT_EQ(1, g_debugSwitches.dbg2Log);
    EXPECT_EQ(0, LoadDebugSwitchesW(L"None", 0));
    EXPECT_EQ(0, g_debugSwitches.debug);
    EXPECT_EQ(1, g_debugSwitches.dbg2Log) << "set for good";
}

// Unlike that of narrow ones, the limit of 1,024 characters holds for stamp and message together.
// Wine's loses the last.
TEST_F(RegistryTest, WideLinesAreCut) {
    DebugLogW(L"%s", std::wstring(2000, L'9').c_str());
    ASSERT_EQ(1u, log.Lines().size());
    const size_t size = log.Lines()[0].size();
    EXPECT_EQ(std::string(size, '9'), log.Lines()[0]);
    EXPECT_TRUE(size == 1000 || size == 999) << size;
}

}  // namespace
}  // namespace vndiscover
