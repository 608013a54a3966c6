#include "model/computer/computer_report.h"

#include <gmock/gmock.h>

#include "model/computer/doctor_report.h"

namespace vndiscover::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kProgram[] = "C:\\Tools\\vndiscover.exe";
constexpr char kAdd[] =
    "netsh advfirewall firewall add rule name=\"VnDiscover\" dir=in action=allow "
    "program=\"C:\\Tools\\vndiscover.exe\" protocol=udp remoteport=161,3702 profile=";
constexpr char kDelete[] =
    "netsh advfirewall firewall delete rule name=all dir=in "
    "program=\"C:\\Tools\\vndiscover.exe\"";

struct ScriptedComputer : Computer {
    AdapterList ipv4{true, true, 1, {{"10.77.1.1", "255.255.255.0", "eth0", "", 6, true}}};
    AdapterList ipv6{true, true, 1, {{"fe80::1", "", "eth0", "", 6, true}}};
    FirewallState firewall;
    std::string noRouteTo;

    AdapterList IPv4() const override { return ipv4; }
    AdapterList IPv6() const override { return ipv6; }
    Route RouteTo(const char* target) const override {
        return {target, "eth0", noRouteTo == target ? "" : "10.77.1.1", ""};
    }
    FirewallState Firewall() const override { return firewall; }
    LogSwitches Log() const override { return {}; }
    std::string ProgramPath() const override { return kProgram; }
};

TEST(ComputerReport, ListsAddressesInTheSweepsOrderWithTheirTime) {
    ScriptedComputer computer;
    computer.ipv4.addresses = {{"10.8.0.2", "255.255.255.0", "Office", "Some VPN", 6, true},
                               {"0.0.0.0", "0.0.0.0", "Wi-Fi", "", 71, false},
                               {"169.254.7.7", "255.255.0.0", "LAN 2", "", 6, true},
                               {"10.9.0.2", "255.0.0.0", "vEthernet (x)", "", 6, false}};
    computer.ipv6.addresses.push_back({"fe80::2", "", "eth1", "", 131, false});
    const ComputerReport report = ReportOn(computer);
    std::vector<std::string> rows;
    for (const SweepPlan* plan : {&report.ipv4, &report.ipv6}) {
        for (const SweepRow& row : plan->rows)
            rows.push_back(row.kind + ", " + row.state + ", " + std::to_string(row.seconds));
    }
    EXPECT_THAT(
        rows, ElementsAre("VPN, up, 2", "wireless, no address, 2", "Ethernet, automatic address, 2",
                          "virtual, down, 2", "Ethernet, up, 2", "tunnel, down, 0"));
    EXPECT_EQ(8u, report.ipv4.seconds);
    EXPECT_EQ(2u, report.ipv6.seconds);
    EXPECT_THAT(report.notes, ElementsAre(HasSubstr("3 of the 4 IPv4 addresses")));
    EXPECT_THAT(report.causes, IsEmpty());
}

TEST(ComputerReport, NamesCausesThatPreventASweep) {
    const auto causes = [](auto change) {
        ScriptedComputer computer;
        change(computer);
        return ReportOn(computer).causes;
    };
    EXPECT_THAT(causes([](auto& it) { it.ipv4 = {}; }), ElementsAre(HasSubstr("no list")));
    EXPECT_THAT(causes([](auto& it) { it.ipv4.fits = false, it.ipv4.adapters = 33; }),
                ElementsAre(HasSubstr("33 adapters, but room for 32")));
    EXPECT_THAT(causes([](auto& it) { it.ipv4.addresses.clear(); }),
                ElementsAre(HasSubstr("no adapter has an IPv4 address")));
    EXPECT_THAT(causes([](auto& it) { it.ipv4.addresses[0].isUp = false; }),
                ElementsAre(HasSubstr("no adapter that is up")));
    EXPECT_THAT(causes([](auto& it) { it.ipv4.addresses[0].address = "169.254.3.4"; }),
                ElementsAre(HasSubstr("only automatic addresses")));
    EXPECT_THAT(causes([](auto& it) { it.noRouteTo = "255.255.255.255"; }),
                ElementsAre(HasSubstr("no route for the broadcast")));
    EXPECT_THAT(causes([](auto& it) { it.noRouteTo = "239.255.255.250"; }),
                ElementsAre(HasSubstr("no route for the multicast")));
    EXPECT_THAT(causes([](auto& it) { it.ipv6 = {}; }), IsEmpty());
}

TEST(ComputerReport, LimitsIPv6AddressesLikeTheModule) {
    ScriptedComputer computer;
    computer.ipv6.addresses.resize(33, computer.ipv6.addresses[0]);
    const ComputerReport report = ReportOn(computer);
    EXPECT_EQ(64u, report.ipv6.seconds);
    EXPECT_EQ(0u, report.ipv6.rows[32].seconds);
}

TEST(ComputerReport, KnowsItsOwnNetworks) {
    AdapterList list = ScriptedComputer().ipv4;
    list.addresses.push_back({"0.0.0.0", "0.0.0.0", "", "", 6, false});
    EXPECT_EQ(true, IsOnOwnNetwork(list, "10.77.1.255"));
    EXPECT_EQ(false, IsOnOwnNetwork(list, "10.77.2.1"));
    EXPECT_EQ(std::nullopt, IsOnOwnNetwork(list, "printer"));
}

struct FirewallCase {
    const char* name;
    FirewallProfile profile;
    std::vector<FirewallRule> rules;
    Passage snmp, wsd;
    std::vector<std::string> commands;
};

class Firewall : public testing::TestWithParam<FirewallCase> {};

TEST_P(Firewall, BlockingRulesTakePrecedence) {
    ScriptedComputer computer;
    computer.firewall = {true, {GetParam().profile}, GetParam().rules};
    const ComputerReport report = ReportOn(computer);
    ASSERT_EQ(2u, report.firewall.ports.size());
    EXPECT_EQ(GetParam().snmp, report.firewall.ports[0].passage);
    EXPECT_EQ(GetParam().wsd, report.firewall.ports[1].passage);
    EXPECT_EQ(GetParam().commands, report.firewall.commands);
    const size_t closed =
        (GetParam().snmp == Passage::kClosed) + (GetParam().wsd == Passage::kClosed);
    EXPECT_EQ(closed, report.causes.size());
}

TEST(ComputerReport, TellsThatAPolicyTakesPrecedence) {
    ScriptedComputer computer;
    computer.firewall.isOverridden = true;
    EXPECT_THAT(ReportOf(ReportOn(computer))[4].rows[1].text, HasSubstr("a group policy"));
}

constexpr FirewallProfile kDefault = {kPrivate, true, false, false, true};
constexpr FirewallProfile kStrict = {kPublic, true, false, false, false};
const FirewallRule kAllow = {"ours", "161,3700-3702", kPrivate, true, true};
const FirewallRule kBlock = {"refused", "*", kPrivate | kPublic, false, true};
const FirewallRule kBlockAll = {"policy", "3702", kPrivate, false, false};
INSTANTIATE_TEST_SUITE_P(
    Table, Firewall,
    testing::Values(
        FirewallCase{"Off",
                     {kPrivate, false, true, false, false},
                     {kBlock},
                     Passage::kOpen,
                     Passage::kOpen,
                     {}},
        FirewallCase{"NoRule",
                     kDefault,
                     {},
                     Passage::kBrief,
                     Passage::kBrief,
                     {std::string(kAdd) + "private"}},
        FirewallCase{"NoRuleInPublic",
                     kStrict,
                     {kAllow},
                     Passage::kClosed,
                     Passage::kClosed,
                     {std::string(kAdd) + "public"}},
        FirewallCase{"Allowed", kDefault, {kAllow}, Passage::kOpen, Passage::kOpen, {}},
        FirewallCase{"AllowedByDefault",
                     {kPublic, true, false, true, false},
                     {},
                     Passage::kOpen,
                     Passage::kOpen,
                     {}},
        FirewallCase{"BlockOutweighs",
                     kDefault,
                     {kAllow, kBlock},
                     Passage::kClosed,
                     Passage::kClosed,
                     {kDelete, std::string(kAdd) + "private"}},
        FirewallCase{
            "OthersRuleStays", kDefault, {kAllow, kBlockAll}, Passage::kOpen, Passage::kClosed, {}},
        FirewallCase{"BlocksEverything",
                     {kDomain, true, true, true, true, false},
                     {kAllow},
                     Passage::kClosed,
                     Passage::kClosed,
                     {"netsh advfirewall set domainprofile firewallpolicy "
                      "blockinbound,blockoutbound",
                      std::string(kAdd) + "domain"}}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace vndiscover::host
