// The registry reader and the wide writer of the log, beyond what the exports use of them.
#include "support/registry.h"

#include <gtest/gtest.h>

#include "helpers/log_capture.h"
#include "support/debug_switches.h"

namespace vndiscover {
namespace {

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
    HKEY key = nullptr;
    UnitLog log;
};

TEST_F(RegistryTest, ReadsANumberOrGivesTheDefaultAndTellsWhy) {
    const HKEY hive = HKEY_LOCAL_MACHINE;
    const std::wstring widePath(std::begin(kPath), std::end(kPath));
    Set("Count", 0xFFFFFFFE);
    EXPECT_EQ(-2, GetRegValueLong(hive, widePath.c_str(), L"Count", 7, KEY_QUERY_VALUE));
    EXPECT_EQ(7, GetRegValueLong(hive, widePath.c_str(), L"Debug", 7, 0));
    EXPECT_EQ(7, GetRegValueLong(hive, L"No\\Key", L"Debug", 7, 0));
    EXPECT_EQ(-2, GetRegValueLong(hive, kPath, "Count", 7, 0));
    EXPECT_EQ(7, GetRegValueLong(hive, kPath, "debug", 7, 0));
    EXPECT_EQ(7, GetRegValueLong(hive, kPath, "Count", 7, KEY_CREATE_LINK));
    EXPECT_EQ(0, IsRunningUnderWow64());
    EXPECT_EQ(
        "GetRegValueLong - Get value error - 2 for Debug\n"
        "GetRegValueLong - Open registry error - 2 for No\\Key\n"
        "GetRegValueLong??? - Get value error - 2 for debug\n"
        "GetRegValueLong??? - Get value error - 5 for Count\n",
        log.Text());
}

TEST_F(RegistryTest, HoldsTheSwitchesUnderTheKeyDebugWhereNoOtherIsNamed) {
    Set("Debug", 2);
    Set("Dbg2Log", 3);
    EXPECT_EQ(3, LoadDebugSwitchesW(nullptr, 0));
    EXPECT_TRUE(g_debugSwitches.debug == 1 && g_debugSwitches.dbg2Log == 1);
    EXPECT_EQ(0, LoadDebugSwitchesW(L"None", 5));
    EXPECT_TRUE(IsDebugLogEnabled() == 5 && g_debugSwitches.dbg2Log == 1) << "set for good";
    LoadDebugSwitches(nullptr, 0);
    EXPECT_EQ(1, IsDebugLogEnabled());
}

// Unlike that of narrow ones, the limit of 1,024 characters holds for stamp and message together.
// Wine's loses the last.
TEST_F(RegistryTest, WideLinesAreCut) {
    DebugLogW(L"%s", std::wstring(2000, L'9').c_str());
    const std::string cut = log.Text();
    EXPECT_TRUE(cut == std::string(1000, '9') || cut == std::string(999, '9')) << cut.size();
}

}  // namespace
}  // namespace vndiscover
