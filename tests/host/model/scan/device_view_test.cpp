#include "model/scan/device_writer.h"

#include <gtest/gtest.h>

#include "model/scan/device_merge.h"
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
    void Tell(const char* address, const char* name, uint32_t type, const char* text) {
        scan_.answers.push_back(
            {1, "2026-11-25T05:00:00Z", address, AnsweredWith(*ParseOidOrName(name), type, text)});
        Show();
    }
    void Show() { view_.SetRows(maker_.Make(scan_, MakeDevices(scan_), adapters_)); }
    std::string Shown(Column column = Column::kAddress) const {
        std::string all;
        for (size_t index = 0; index < view_.Count(); ++index)
            all += view_.Row(index).Text(column) + ";";
        return all;
    }

    Scan scan_;
    AdapterList adapters_;
    RowMaker maker_;
    DeviceView view_;
};

TEST_F(DeviceViewTest, SortsAddressesAsNumbers) {
    for (const char* address :
         {"10.77.1.100", "fe80::10", "10.77.1.9", "fe80::9", "name", "9.1.1.1"})
        Hear(address, "x");
    EXPECT_EQ("9.1.1.1;10.77.1.9;10.77.1.100;fe80::9;fe80::10;name;", Shown());
    view_.Sort(Column::kAddress, true);
    EXPECT_EQ("name;fe80::10;fe80::9;10.77.1.100;10.77.1.9;9.1.1.1;", Shown());
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

TEST_F(DeviceViewTest, FilterHidesWithoutDeleting) {
    Hear("10.77.1.1", "VN LaserPro");
    Hear("10.77.1.2", "VN InkLine");
    view_.Select(1);
    view_.Filter("vn  laser");
    EXPECT_EQ("10.77.1.1;", Shown());
    EXPECT_FALSE(view_.Selected());
    ASSERT_TRUE(view_.SelectedRow());
    EXPECT_EQ("10.77.1.2", view_.SelectedRow()->Text(Column::kAddress));
    view_.Filter("1.1 ink");
    EXPECT_EQ(0u, view_.Count());
    view_.Filter(" ");
    EXPECT_EQ(2u, view_.Count());
    EXPECT_EQ(1u, view_.Selected());
}

TEST_F(DeviceViewTest, SelectionFollowsItsDeviceThroughMovesAndMerges) {
    Hear("10.77.1.5", "x");
    Hear("10.77.1.9", "y");
    view_.Select(1);
    Hear("10.77.1.1", "z");
    EXPECT_EQ(2u, view_.Selected());
    Tell("10.77.1.5", "prtGeneralSerialNumber.1", kOctetString, "S1");
    Tell("10.77.1.9", "prtGeneralSerialNumber.1", kOctetString, "S1");
    EXPECT_EQ("10.77.1.1;10.77.1.5, 10.77.1.9;", Shown());
    EXPECT_EQ(1u, view_.Selected());
}

TEST_F(DeviceViewTest, RowShowsProtocolsNetworkAndLastAnswer) {
    Hear("10.77.1.20", "x");
    Tell("10.77.1.20", "sysName.0", kOctetString, "hall");
    Hear("10.78.1.20", "y");
    EXPECT_EQ("SNMPv1, SNMPv3;SNMPv1;", Shown(Column::kProtocols));
    EXPECT_EQ("10.77.1.0/24;;", Shown(Column::kNetwork));
    EXPECT_EQ("2026-11-25T05:00:00Z;2026-11-25T04:00:00Z;", Shown(Column::kLastSeen));
    EXPECT_EQ("hall;;", Shown(Column::kName));
}

TEST_F(DeviceViewTest, CsvCellsAreNeverFormulas) {
    Hear("10.77.1.20", "=1+\"2\";\xEF\xBC\x9DZ2");
    EXPECT_EQ(
        "\xEF\xBB\xBF\"Address\",\"Model\"\r\n\"10.77.1.20\",\"'=1+\"\"2\"\";'\xEF\xBC\x9DZ2\"\r\n",
        CsvOf(view_, {{Column::kAddress, "Address"}, {Column::kModel, "Model"}}));
}

// As the console prints them: a value, the value in a request for one OID, and a whole document.
TEST_F(DeviceViewTest, JsonHoldsTheShownAnswersToSweeps) {
    scan_.sweeps.push_back({SweepKind::kSnmpV3, AnswerForm::kDocument, false, {}, ""});
    scan_.sweeps.push_back({SweepKind::kWsd, AnswerForm::kReply, false, {}, ""});
    Hear("10.77.1.21", "VN LaserPro");
    Tell("10.77.1.21", "sysName.0", kOctetString, "hall");
    Hear("10.77.1.3", "hidden");
    const std::string one = R"({"DiscoverOID":".1.3","GET":{".1.3":"VN 70"}})";
    const std::string other = R"({"DiscoverOID":".1.3","GET":{".1.4":"VN 71"}})";
    scan_.answers.push_back({2, "", "10.77.1.22", Received(one)});
    scan_.answers.push_back({2, "", "10.77.1.21", Received(other)});
    scan_.answers.push_back({3, "", "10.77.1.23", Received("<reply/>")});
    Show();
    view_.Sort(Column::kAddress, true);
    view_.Filter("1.2");
    EXPECT_EQ(
        "[\n  {\"address\":\"10.77.1.23\",\"value\":\"\"},\n"
        "  {\"address\":\"10.77.1.22\",\"value\":\"VN 70\"},\n"
        "  {\"address\":\"10.77.1.21\",\"value\":\"VN LaserPro\"},\n"
        "  {\"address\":\"10.77.1.21\",\"value\":" +
            other + "}\n]\n",
        JsonOf(view_, scan_));
}

}  // namespace
}  // namespace vndiscover::host
