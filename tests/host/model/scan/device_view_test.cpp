#include "model/scan/device_view.h"

#include <gtest/gtest.h>

#include "host/model/scripted_device.h"
#include "model/scan/device_merge.h"
#include "model/scan/scan_report.h"
#include "values/module_types.h"
#include "values/object_names.h"

namespace vndiscover::host {
namespace {

constexpr char kDeviceOid[] = ".1.3.6.1.4.1.5963.43.5.1.1.1.1";

// Devices with a value of the default discovery OID each, then variables requested from them.
class DeviceViewTest : public testing::Test {
  protected:
    DeviceViewTest() {
        scan_.sweeps.push_back(
            {SweepKind::kSnmpV1, AnswerForm::kValue, false, *ParseOid(kDeviceOid), ""});
        scan_.sweeps.push_back({SweepKind::kSnmpV3, AnswerForm::kVariable, false, {}, ""});
        adapters_.addresses.push_back({"10.77.1.1", "255.255.255.0", "", "", 6, true});
    }
    void Hear(const char* address, const char* model) {
        scan_.answers.push_back({0, "2026-11-25T04:00:00Z", address, Received(model)});
        Show();
    }
    void Tell(const char* address, const std::string& variables) {
        for (const Answer& one : AnswersOf(variables))
            scan_.answers.push_back({1, "2026-11-25T05:00:00Z", address, one});
        Show();
    }
    void Show() {
        view_.SetRows(MakeRows(
            {scan_, adapters_, limits_}, MakeDevices(scan_),
            [&](const FoundDevice& device) {
                if (device.answers == missed_)
                    return Standing{Standing::Kind::kNotFound, "2026-11-25T04:00:00Z", ""};
                return StandingOf(scan_, device, nullptr, false, LastSearches(scan_, false));
            },
            view_.ReleaseRows()));
    }
    std::string Shown(Column column = Column::kAddress) const {
        std::string all;
        for (size_t index = 0; index < view_.Count(); ++index)
            all += view_.Row(index).Text(column) + ";";
        return all;
    }

    Scan scan_;
    AdapterList adapters_;
    LevelLimits limits_;
    std::vector<size_t> missed_;  // the answers of a device
    DeviceView view_;
};

TEST_F(DeviceViewTest, SortsAddressesAsNumbers) {
    view_.Sort(Column::kAddress, false);
    for (const char* address :
         {"10.77.1.100", "fe80::10", "10.77.1.9", "fe80::9", "name", "9.1.1.1"})
        Hear(address, "x");
    EXPECT_EQ("9.1.1.1;10.77.1.9;10.77.1.100;fe80::9;fe80::10;name;", Shown());
    view_.Sort(Column::kAddress, true);
    EXPECT_EQ("name;fe80::10;fe80::9;10.77.1.100;10.77.1.9;9.1.1.1;", Shown());
}

TEST_F(DeviceViewTest, LimitsTellWhatNeedsAttention) {
    Tell("10.77.1.1",
         "hrDeviceStatus.1 i 2; hrPrinterStatus.1 i 3; prtMarkerSuppliesSupplyUnit.1.1 i 19; "
         "prtMarkerSuppliesLevel.1.1 i 20");
    EXPECT_EQ(Severity::kFine, view_.Row(0).severity);
    limits_ = {30};
    view_.SetRows({});
    Show();
    EXPECT_EQ(Severity::kAttention, view_.Row(0).severity);
    EXPECT_EQ(Severity::kAttention, view_.Row(0).summary.supplySeverity);
}

TEST_F(DeviceViewTest, SortsTextWithoutCaseAndUnknownValuesLast) {
    Hear("10.77.1.1", "beta");
    Hear("10.77.1.2", "");
    Hear("10.77.1.3", "Alpha");
    view_.Sort(Column::kModel, false);
    EXPECT_EQ("Alpha;beta;;", Shown(Column::kModel));
    view_.Sort(Column::kModel, true);
    EXPECT_EQ("beta;Alpha;;", Shown(Column::kModel));
}

TEST_F(DeviceViewTest, FilterHidesWhatLacksAWord) {
    Hear("10.77.1.1", "VN LaserPro");
    Hear("10.77.1.2", "VN InkLine");
    for (const auto& [text, shown] :
         {std::pair("vn  laser", "10.77.1.1;"), {"1.1 ink", ""}, {" ", "10.77.1.1;10.77.1.2;"}}) {
        view_.Filter(text);
        EXPECT_EQ(shown, Shown());
    }
}

// Also those that are hidden meanwhile.
TEST_F(DeviceViewTest, SeveralStaySelected) {
    for (const char* address : {"10.77.1.1", "10.77.1.2", "10.77.1.3"}) Hear(address, address);
    view_.Select({0, 2}, 2);
    view_.Sort(Column::kAddress, true);
    EXPECT_EQ((std::vector<size_t>{0, 2}), view_.Selection());
    EXPECT_EQ(0u, view_.Selected());
    view_.Filter("1.1");
    EXPECT_EQ((std::vector<size_t>{0}), view_.Selection());
    EXPECT_EQ(0u, view_.Selected()) << "in place of the one that is hidden";
    view_.Filter("1.2");
    EXPECT_FALSE(view_.SelectedRow()) << "commands act on what is seen";
    view_.Filter("");
    EXPECT_EQ((std::vector<size_t>{0, 2}), view_.Selection());
}

TEST_F(DeviceViewTest, RowShowsProtocolsNetworkAndLastAnswer) {
    Hear("10.77.1.20", "x");
    Tell("10.77.1.20", "sysName.0 s hall");
    Hear("10.78.1.20", "y");
    EXPECT_EQ("SNMPv1, SNMPv3;SNMPv1;", Shown(Column::kProtocols));
    EXPECT_EQ("10.77.1.0/24;;", Shown(Column::kNetwork));
    EXPECT_EQ("2026-11-25T05:00:00Z;2026-11-25T04:00:00Z;", Shown(Column::kLastSeen));
    EXPECT_EQ("hall;;", Shown(Column::kName));
}

// The worst first, then the lowest supply; a state that does not hold is none.
TEST_F(DeviceViewTest, StartsWithTheWorst) {
    using Text = std::string;
    for (const auto& [address, status, level] : {std::tuple("10.77.1.1", Text("2"), Text("80")),
                                                 {"10.77.1.2", "2", "9"},
                                                 {"10.77.1.3", "5", "80"},
                                                 {"10.77.1.4", "2", "40"}})
        Tell(address,
             "hrPrinterStatus.1 i 3; prtMarkerSuppliesMaxCapacity.1.1 i 100; "
             "hrDeviceStatus.1 i " +
                 status + "; prtMarkerSuppliesLevel.1.1 i " + level);
    Hear("10.77.1.5", "x");
    EXPECT_EQ("10.77.1.3;10.77.1.2;10.77.1.5;10.77.1.4;10.77.1.1;", Shown());
    EXPECT_EQ("80 % supply;9 % supply;;40 % supply;80 % supply;", Shown(Column::kSupplies));
    missed_ = view_.Row(0).answers;
    Show();
    EXPECT_EQ("10.77.1.2;10.77.1.3;10.77.1.5;10.77.1.4;10.77.1.1;", Shown());
}

TEST_F(DeviceViewTest, ShowsNoComputerAsAPrinter) {
    scan_.sweeps.push_back({SweepKind::kWsd, AnswerForm::kReply, false, {}, ""});
    const auto reply = [&](const char* address, const char* type) {
        scan_.answers.push_back({2, "", address, Received(Reply(address, type))});
    };
    Hear("10.77.1.1", "never read");
    Tell("10.77.1.2", "sysName.0 s a computer");
    Tell("10.77.1.3", "hrPrinterStatus.1 i 3");
    reply("10.77.1.4", "Computer");
    reply("10.77.1.5", "PrintDeviceType");
    view_.ShowOnlyPrinters(true);
    Show();
    EXPECT_EQ("10.77.1.1;10.77.1.5;10.77.1.3;", Shown());
    EXPECT_EQ(3u, view_.Total());
    EXPECT_EQ(2u, view_.Others());
    view_.ShowOnlyPrinters(false);
    EXPECT_EQ(5u, view_.Count());
}

TEST(DeviceReport, SaysNothingTwice) {
    PrinterFacts facts;
    facts.printerStatus = "idle";
    facts.errors = std::vector<std::string>{"noToner"};
    facts.supplies = {{"Black toner", "black", "toner", {0, 100, ""}},
                      {"Fuser", "", "opc", {50, 100, ""}}};
    DeviceRow row;
    row.facts = std::make_shared<PrinterFacts>(facts);
    row.standing.kind = Standing::Kind::kRead;
    std::string told;
    for (const ReportRow& one : RowsOf(ReportOf(row, std::nullopt)))
        told += one.label + "=" + one.text + ";";
    EXPECT_EQ(
        "State=no toner;Printer=idle;Supplies=;   Black toner=0 % (0 of 100);"
        "   Fuser=50 % (50 of 100), photoconductor;",
        told);
}

}  // namespace
}  // namespace vndiscover::host
