#include <gtest/gtest.h>

#include "host/model/scripted_device.h"
#include "model/printer/printer_facts.h"

namespace vndiscover::host {
namespace {

ScriptedDevice Device() {
    ScriptedDevice device;
    device.Text("sysName.0", "hall");
    for (const char* row : {".1", ".2"}) {
        device.Integer((std::string("ifType") + row).c_str(), row[1] == '1' ? 24 : 6);
        device.Integer((std::string("ifAdminStatus") + row).c_str(), 1);
        device.Integer((std::string("ifOperStatus") + row).c_str(), row[1] == '1' ? 9 : 2);
    }
    device.Integer("ifPhysAddress.1", 1);
    device.Integer("ifType.3.1", 6);  // no row of the table
    device.Text("ifDescr.2", "LAN\x1B port");
    device.Text("ifPhysAddress.2", "\x02\x10\x20\x30\x40\x50");
    device.variables[*ParseOidOrName("ifSpeed.2")] = {kGauge32, std::string("\x05\xF5\xE1\x00", 4)};
    return device;
}

TEST(Interfaces, AreReadAfterThePrinterAndInWords) {
    ScriptedDevice device = Device();
    const Asker asker = device.MakeAsker();
    PrinterAnswers printer = ReadPrinter(asker);
    EXPECT_FALSE(printer.values.count(*ParseOidOrName("ifDescr.2")));
    const size_t before = device.requests;
    const PrinterAnswers answers = ReadInterfaces(asker, std::move(printer));
    EXPECT_EQ(7u, device.requests - before) << "three columns and their ends";
    EXPECT_TRUE(answers.gaps.empty());
    const std::vector<Interface> interfaces = FactsOf(answers).interfaces;
    ASSERT_EQ(2u, interfaces.size());
    EXPECT_EQ("software loopback", interfaces[0].type);
    EXPECT_EQ("9", interfaces[0].operStatus);
    EXPECT_EQ("", interfaces[0].physicalAddress);
    EXPECT_EQ("LAN\xEF\xBF\xBD port", interfaces[1].description);
    EXPECT_EQ("100 Mbit/s", interfaces[1].speed);
    EXPECT_EQ("02:10:20:30:40:50", interfaces[1].physicalAddress);
    EXPECT_EQ("up", interfaces[1].adminStatus);
    EXPECT_EQ("down", interfaces[1].operStatus);
}

TEST(Interfaces, SilentDeviceIsAskedNoFurther) {
    ScriptedDevice device = Device();
    device.failure = [](const Oid& asked) {
        return NameText(asked) == "ifPhysAddress" ? Status::kRefused : Status::kAnswered;
    };
    PrinterAnswers printer = ReadPrinter(device.MakeAsker());
    const size_t before = device.requests;
    printer = ReadInterfaces(device.MakeAsker(), std::move(printer));
    EXPECT_EQ(before, device.requests);
    EXPECT_EQ("interfaces", printer.gaps.back().subject);
    EXPECT_EQ(Status::kRefused, printer.lastStatus);
    EXPECT_EQ("refused: ", printer.lastProblem);
}

TEST(Interfaces, SpeedsHaveTheLargestUnit) {
    const std::pair<uint64_t, const char*> rows[] = {{0, ""},
                                                     {9600, "9.6 kbit/s"},
                                                     {1000000, "1 Mbit/s"},
                                                     {2500000000, "2.5 Gbit/s"},
                                                     {4294967295, "over 4.2 Gbit/s"}};
    for (const auto& [speed, text] : rows) EXPECT_EQ(text, SpeedText(speed));
}

}  // namespace
}  // namespace vndiscover::host
