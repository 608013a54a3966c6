#include "model/computer/computer_report.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "values/text.h"

namespace vndiscover::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Computer Usual() {
    Computer computer;
    computer.ipv4 = {true, true, 1, {{"10.77.1.1", "255.255.255.0", "eth0", "", 6, true}}};
    computer.ipv6 = {true, true, 1, {{"fe80::1", "", "eth0", "", 6, true}}};
    computer.broadcast = {"255.255.255.255", "eth0", "10.77.1.1", ""};
    computer.multicast = {"239.255.255.250", "eth0", "10.77.1.1", ""};
    computer.programPath = "C:\\Tools\\vndiscover.exe";
    return computer;
}

TEST(ComputerReport, ListsAddressesInTheSweepsOrderWithTheirTime) {
    Computer computer = Usual();
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
    const std::pair<void (*)(Computer&), const char*> rows[] = {
        {[](Computer& it) { it.ipv4 = {}; }, "no list"},
        {[](Computer& it) { it.ipv4.fits = false, it.ipv4.adapters = 33; },
         "33 adapters, but room for 32"},
        {[](Computer& it) { it.ipv4.addresses.clear(); }, "no adapter has an IPv4 address"},
        {[](Computer& it) { it.ipv4.addresses[0].isUp = false; }, "no adapter that is up"},
        {[](Computer& it) { it.ipv4.addresses[0].address = "169.254.3.4"; },
         "only automatic addresses"},
        {[](Computer& it) { it.broadcast.source.clear(); }, "no route for the broadcast"},
        {[](Computer& it) { it.multicast.source.clear(); }, "no route for the multicast"}};
    for (const auto& [change, cause] : rows) {
        Computer computer = Usual();
        computer.ipv6 = {};  // which is none
        change(computer);
        EXPECT_THAT(ReportOn(computer).causes, ElementsAre(HasSubstr(cause)));
    }
}

TEST(ComputerReport, LimitsIPv6AddressesLikeTheModule) {
    Computer computer = Usual();
    computer.ipv6.addresses.resize(33, computer.ipv6.addresses[0]);
    const ComputerReport report = ReportOn(computer);
    EXPECT_EQ(64u, report.ipv6.seconds);
    EXPECT_EQ(0u, report.ipv6.rows[32].seconds);
}

TEST(ComputerReport, KnowsItsOwnNetworks) {
    AdapterList list = Usual().ipv4;
    list.addresses.push_back({"0.0.0.0", "0.0.0.0", "", "", 6, false});
    EXPECT_EQ(true, IsOnOwnNetwork(list, "10.77.1.255"));
    EXPECT_EQ(false, IsOnOwnNetwork(list, "10.77.2.1"));
    EXPECT_EQ(std::nullopt, IsOnOwnNetwork(list, "printer"));
    const size_t networks = CountNetworks(list);
    list.addresses.push_back({"10.77.1.250", "255.255.255.0", "", "", 6, true});
    EXPECT_EQ(networks, CountNetworks(list));
    list.addresses.push_back({"10.77.2.250", "255.255.255.0", "", "", 6, true});
    EXPECT_EQ(networks + 1, CountNetworks(list));
}

TEST(ComputerReport, TellsTheTimeOfEveryAnswerThatWasMeasured) {
    EXPECT_EQ("answered after under 0.01 s", StepText({Outcome::kAnswered, "", 0}));
    EXPECT_EQ("answered after 2.50 s", StepText({Outcome::kAnswered, "", 2500}));
    EXPECT_EQ("answered", StepText({Outcome::kAnswered, "", {}}));
    EXPECT_EQ("not sent", StepText({Outcome::kNotSent, "", 0}));
}

TEST(ComputerReport, TellsThatWhatGoesOutNeedsARule) {
    Computer computer = Usual();
    computer.firewall = {true, {{kPublic, true, false, true, false, false}}, {}};
    EXPECT_THAT(ReportOn(computer).notes, ElementsAre(HasSubstr("public profile, lets out only")));
    computer.firewall.active[0].isOn = false;
    EXPECT_THAT(ReportOn(computer).notes, IsEmpty());
}

TEST(ComputerReport, TellsThatAPolicyTakesPrecedence) {
    Computer computer = Usual();
    computer.firewall.isOverridden = true;
    EXPECT_THAT(ReportOf(ReportOn(computer))[4].rows[1].text, HasSubstr("a group policy"));
}

TEST(Firewall, BlockingRulesTakePrecedence) {
    const FirewallProfile usual = {kPrivate, true, false, false, true};
    const FirewallRule allow = {"ours", "161,3700-3702", kPrivate, true, true};
    const FirewallRule block = {"refused", "*", kPrivate | kPublic, false, true};
    const FirewallProfile inPublic = {kPublic, true, false, false, false};
    const FirewallRule policy = {"policy", "3702", kPrivate, false, false};
    const std::string add =
        "netsh advfirewall firewall add rule name=\"VnDiscover\" dir=in action=allow "
        "program=\"C:\\Tools\\vndiscover.exe\" protocol=udp remoteport=161,3702 profile=";
    const std::string remove =
        "netsh advfirewall firewall delete rule name=all dir=in "
        "program=\"C:\\Tools\\vndiscover.exe\"";
    using Commands = std::vector<std::string>;
    // The passages are those of SNMP and of WS-Discovery.
    const std::tuple<const char*, FirewallProfile, std::vector<FirewallRule>, const char*, Commands>
        rows[] = {{"off", {kPrivate, false, true, false, false}, {block}, "in, in", {}},
                  {"no rule", usual, {}, "in briefly, in briefly", {add + "private"}},
                  {"of another profile", inPublic, {allow}, "kept out, kept out", {add + "public"}},
                  {"allowed", usual, {allow}, "in, in", {}},
                  {"allowed by default", {kPublic, true, false, true, false}, {}, "in, in", {}},
                  {"both", usual, {allow, block}, "kept out, kept out", {remove, add + "private"}},
                  {"blocked by an administrator", usual, {allow, policy}, "in, kept out", {}},
                  {"all is blocked",
                   {kDomain, true, true, true, true, false},
                   {allow},
                   "kept out, kept out",
                   {"netsh advfirewall set domainprofile firewallpolicy blockinbound,blockoutbound",
                    add + "domain"}}};
    for (const auto& [name, profile, rules, passages, commands] : rows) {
        Computer computer = Usual();
        computer.firewall = {true, {profile}, rules};
        const ComputerReport report = ReportOn(computer);
        const auto& ports = report.firewall.ports;
        EXPECT_EQ(passages,
                  JoinedAs(ports, [](const auto& port) { return PassageText(port.passage); }))
            << name;
        EXPECT_EQ(commands, report.firewall.commands) << name;
        const auto closed = std::count_if(ports.begin(), ports.end(), [](const auto& port) {
            return port.passage == Passage::kClosed;
        });
        EXPECT_EQ(static_cast<size_t>(closed), report.causes.size()) << name;
    }
}

}  // namespace
}  // namespace vndiscover::host
