// The meaning of a printer's variables in cases that tools often get wrong.
#include "model/printer/printer_facts.h"

#include <gtest/gtest.h>

#include "host/model/scripted_device.h"

namespace vndiscover::host {
namespace {

constexpr char kPrinterType[] = ".1.3.6.1.2.1.25.3.1.5";

PrinterFacts Facts(ScriptedDevice& device) { return FactsOf(ReadPrinter(device.MakeAsker())); }

TEST(PrinterFacts, AreThoseOfThePrinterAmongTheDevices) {
    ScriptedDevice device;
    device.Object("hrDeviceType.1", ".1.3.6.1.2.1.25.3.1.3");  // a processor
    device.Object("hrDeviceType.4", kPrinterType);
    device.Object("hrDeviceType.9", kPrinterType);
    for (const auto& [status, name] :
         {std::pair(2, "hrDeviceStatus.1"), {5, "hrDeviceStatus.4"}, {4, "hrPrinterStatus.4"}})
        device.Integer(name, status);
    device.Text("prtInputName.1.1", "of another");
    device.Text("prtInputName.4.1", "");
    device.Text("prtInputDescription.4.1", "Tray 1");
    const PrinterFacts facts = Facts(device);
    EXPECT_EQ(4u, facts.deviceIndex);
    EXPECT_EQ(std::vector<uint32_t>{9}, facts.otherPrinters);
    EXPECT_EQ("down", facts.deviceStatus);
    EXPECT_EQ("printing", facts.printerStatus);
    ASSERT_EQ(1u, facts.trays.size());
    EXPECT_EQ("Tray 1", facts.trays[0].name);
}

TEST(PrinterFacts, AreReadEvenIfNoPrinterIsListed) {
    ScriptedDevice device;
    EXPECT_FALSE(Facts(device).deviceIndex);
    device.Integer("prtMarkerSuppliesLevel.7.1", -3);
    const PrinterFacts facts = Facts(device);
    EXPECT_EQ(7u, facts.deviceIndex);
    ASSERT_EQ(1u, facts.supplies.size());
    EXPECT_EQ("some left", LevelText(facts.supplies[0].level));
}

TEST(PrinterFacts, FallBackIfThePrinterGivesNothing) {
    ScriptedDevice device;
    device.Object("hrDeviceType.1", kPrinterType);
    device.Text("sysDescr.0", "VN InkLine 70");
    device.Text("sysName.0", "attic");
    device.Text("prtGeneralPrinterName.1", " ");
    device.Text("prtGeneralSerialNumber.1", {"\0 ", 2});
    device.Text("entPhysicalSerialNum.1", "");
    device.Text("entPhysicalSerialNum.2", " VN70 ");
    const PrinterFacts facts = Facts(device);
    EXPECT_EQ("VN InkLine 70", facts.model);
    EXPECT_EQ("attic", facts.name);
    EXPECT_EQ("VN70", facts.serialNumber);
}

TEST(PrinterFacts, UseTheDevicesCharacterSet) {
    const std::tuple<int, const char*, const char*> rows[] = {
        {4, "B\xFCro", "B\xC3\xBCro"},
        {4, "B\xC3\xBCro", "B\xC3\x83\xC2\xBCro"},
        {106, "B\xC3\xBCro", "B\xC3\xBCro"},
        {106, "B\xFCro", "B\xC3\xBCro"},  // not in the character set that it names
        {3, "a\x1B", "a\xEF\xBF\xBD"},
        {2252, "\xC3\xBC\xFC", "\xC3\x83\xC2\xBC\xC3\xBC"}};  // not UTF-8 throughout
    for (const auto& [set, text, shown] : rows) {
        ScriptedDevice device;
        device.Object("hrDeviceType.2", kPrinterType);
        device.Integer("prtGeneralCurrentLocalization.2", 3);
        device.Integer("prtLocalizationCharacterSet.2.1", set == 4 ? 106 : 4);
        device.Integer("prtLocalizationCharacterSet.2.3", set);
        device.Text("prtGeneralPrinterName.2", text);
        EXPECT_EQ(shown, Facts(device).name) << set;
    }
}

TEST(PrinterFacts, SuppliesHaveColoursAndKinds) {
    ScriptedDevice device;
    device.Object("hrDeviceType.1", kPrinterType);
    device.Integer("prtMarkerSuppliesColorantIndex.1.1", 2);
    device.Text("prtMarkerColorantValue.1.1", "black");
    device.Text("prtMarkerColorantValue.1.2", "cyan");
    device.Integer("prtMarkerSuppliesClass.1.1", 3);  // consumed, although it is a container
    device.Integer("prtMarkerSuppliesType.1.1", 4);
    device.Integer("prtMarkerSuppliesSupplyUnit.1.1", 13);
    device.Integer("prtMarkerSuppliesLevel.1.1", 30);
    device.Integer("prtMarkerSuppliesMaxCapacity.1.1", -2);
    device.Integer("prtMarkerSuppliesType.1.2", 99);  // without a word or a level
    device.Text("prtMarkerSuppliesLevel.1.2", "x");
    device.Integer("prtMarkerSuppliesLevel.1.3", 5);
    device.Integer("prtMarkerSuppliesSupplyUnit.1.3", 2);
    const PrinterFacts facts = Facts(device);
    ASSERT_EQ(3u, facts.supplies.size());
    EXPECT_EQ("cyan", facts.supplies[0].colour);
    EXPECT_EQ("wasteToner", facts.supplies[0].type);
    EXPECT_EQ("room left: 30 tenths of grams, maximum unknown", LevelText(facts.supplies[0].level));
    EXPECT_EQ("99", facts.supplies[1].type);
    EXPECT_EQ("not given", LevelText(facts.supplies[1].level));
    EXPECT_EQ("5, maximum unknown", LevelText(facts.supplies[2].level)) << "the unit is unknown";
}

TEST(PrinterFacts, UseTheAddressOfAnInterfaceThatIsUp) {
    ScriptedDevice device;
    const std::string mac[] = {
        {"\0\0\0\0\0\0", 6}, "AAAAAA", "BBBBBB", {"\x3C\x2A\xF4\0\xF5\x1B", 6}};
    const int types[] = {6, 24, 6, 62};
    for (int i = 0; i < 4; ++i) {
        const std::string row = "." + std::to_string(i + 1);
        device.Text(("ifPhysAddress" + row).c_str(), mac[i]);
        device.Integer(("ifType" + row).c_str(), types[i]);
        device.Integer(("ifOperStatus" + row).c_str(), 2);
    }
    EXPECT_EQ("42:42:42:42:42:42", Facts(device).macAddress);
    device.Integer("ifOperStatus.4", 1);
    EXPECT_EQ("3C:2A:F4:00:F5:1B", Facts(device).macAddress);
}

TEST(PrinterFacts, TakeNumbersOfAnyType) {
    ScriptedDevice device;
    device.Object("hrDeviceType.1", kPrinterType);
    device.Integer("prtMarkerLifeCount.1.1", 1200);
    device.variables[*ParseOidOrName("prtMarkerLifeCount.1.2")] = {kGauge32, {"\0\xFF\0\0\0", 5}};
    device.Integer("prtMarkerLifeCount.1.3", -2);
    device.variables[*ParseOidOrName("prtMarkerSuppliesLevel.1.1")] = {kCounter32, "\x28"};
    device.Integer("prtMarkerSuppliesMaxCapacity.1.1", 100);
    const PrinterFacts facts = Facts(device);
    ASSERT_EQ(2u, facts.pageCounts.size());
    EXPECT_EQ(4278190080u, facts.pageCounts[1].count);
    ASSERT_EQ(1u, facts.supplies.size());
    EXPECT_EQ(40, PercentOf(facts.supplies[0].level));
}

TEST(PrinterFacts, PutCriticalAlertsFirst) {
    ScriptedDevice device;
    device.Object("hrDeviceType.1", kPrinterType);
    device.Text("hrPrinterDetectedErrorState.1", "\x0C");
    for (const auto& [name, number] : {std::pair("prtAlertSeverityLevel.1.1", 4),
                                       {"prtAlertSeverityLevel.1.2", 3},
                                       {"prtAlertCode.1.1", 807},
                                       {"prtAlertCode.1.2", 8}})
        device.Integer(name, number);
    const PrinterFacts facts = Facts(device);
    EXPECT_EQ((std::vector<std::string>{"doorOpen", "jammed"}), facts.errors);
    ASSERT_EQ(2u, facts.alerts.size());
    EXPECT_EQ("jam", facts.alerts[0].code);
    EXPECT_EQ("inputMediaSupplyLow", facts.alerts[1].code);
}

}  // namespace
}  // namespace vndiscover::host
