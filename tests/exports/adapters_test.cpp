// Which adapters of the host a sweep leaves from, for lists that only few machines have.
#include "exports/support/logged_test.h"
#include "exports/support/scripted_adapters.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class AdaptersTest : public LoggedTest {
  protected:
    // Where the sweep's sockets are bound matters here and not what comes back, so each phase ends
    // at once.
    AdaptersTest() : receives(module, [](int) { return WSANOTINITIALISED; }) {}

    // The local addresses of the requests that a sweep sends.
    std::vector<std::string> SendersOf(BYTE useIPv6) {
        SilentDevices();
        log.Clear();
        window.results.clear();
        Sweep(nullptr, useIPv6);
        EXPECT_THAT(window.Texts(), ElementsAre("end"));
        std::vector<std::string> senders;
        for (const Request& request : agents->Requests()) senders.push_back(request.sender);
        return senders;
    }
    // The log of that sweep as one text.
    std::string Told() const {
        std::string told;
        for (const std::string& line : log.Lines()) told += line;
        return told;
    }

    ScriptedAdapters adapters{module};
    Receives receives;
};

class IPv4Adapters : public AdaptersTest {};

// 0.0.0.0 is an adapter without an address: the system chooses one, as for an address that is gone.
TEST_F(IPv4Adapters, AreNumberedInTheSystemsOrderAddressByAddress) {
    adapters.AddIPv4(
        "First",
        {{"10.77.2.1", "255.255.255.0"}, {"", "255.255.255.0"}, {"10.77.1.1", "255.255.0.0"}});
    adapters.AddIPv4("No mask", {{"10.77.2.1", ""}});
    adapters.AddIPv4("Unplugged", {{"0.0.0.0", "0.0.0.0"}});
    adapters.AddIPv4("Gone", {{"10.99.9.9", "255.255.255.0"}});
    EXPECT_THAT(SendersOf(0), ElementsAre("10.77.2.1", "10.77.1.1", "10.77.1.1", "10.77.1.1"));
    for (const char* lines :
         {"NIC [0]\n   IP   = [10.77.2.1, 255.255.255.0]\n   DESC = [First]\nHandleEvents",
          "NIC [1]\n   IP   = [10.77.1.1, 255.255.0.0]\n   DESC = [First]\nHandleEvents",
          "NIC [2]\n   IP   = [0.0.0.0, 0.0.0.0]\n   DESC = [Unplugged]\nHandleEvents",
          "NIC [3]\n   IP   = [10.99.9.9, 255.255.255.0]\n   DESC = [Gone]\nHandleEvents"}) {
        EXPECT_THAT(Told(), HasSubstr(lines));
    }
}

TEST_F(IPv4Adapters, AreAllUsedUpTo32AndNoneBeyond) {
    EXPECT_THAT(SendersOf(0), IsEmpty());
    for (int i = 0; i < 32; ++i) adapters.AddIPv4("Many", {{"10.77.1.1", "255.255.255.0"}});
    EXPECT_THAT(SendersOf(0), SizeIs(32));
    adapters.AddIPv4("One more", {{"10.77.1.1", "255.255.255.0"}});
    EXPECT_THAT(SendersOf(0), IsEmpty());
    EXPECT_THAT(adapters.sizes, ElementsAre(22528, 22528, 22528)) << "nobody asks for more room";
}

class IPv6Adapters : public AdaptersTest {};

// The system may write addresses in upper case.
TEST_F(IPv6Adapters, AreUsedByTheirLinkLocalAddressesWhileTheyAreUp) {
    adapters.addressesInUpperCase = true;
    adapters.AddIPv6(L"Down", {"fe80::1:1"}, false);
    adapters.AddIPv6(L"Up", {"2001:db8::1", "fe80::2:1", "fd00::1", "fec0::1"});
    adapters.AddIPv6(L"Nothing", {});
    adapters.AddIPv6(L"Too", {"::1", "fe80::1:1"});
    EXPECT_THAT(SendersOf(1), ElementsAre("fe80::2:1", "fe80::1:1"));
    EXPECT_THAT(Told(), HasSubstr("\tFriendly name: Down\n pStringBuf [FE80::1:1]\n"
                                  "IPADDRESS ....fe80::1:1    Link local....\n"
                                  "\tNumber of Unicast Addresses: 1\n\tIfType: 6\n"
                                  "\tOperStatus: 2\n---------------------\n"
                                  "\tFriendly name: Up\n pStringBuf [2001:DB8::1]\n"
                                  "IPADDRESS ....2001:db8::1 pStringBuf [FE80::2:1]\n"
                                  "IPADDRESS ....fe80::2:1    Link local....\n"
                                  " pStringBuf [FD00::1]\nIPADDRESS ....fd00::1"
                                  " pStringBuf [FEC0::1]\nIPADDRESS ....fec0::1"
                                  "\tNumber of Unicast Addresses: 4\n\tIfType: 6\n"
                                  "\tOperStatus: 1\n---------------------\n"
                                  "\tFriendly name: Nothing\n\tNo Unicast Addresses\n"));
}

TEST_F(IPv6Adapters, AreUsedUpTo32) {
    adapters.AddIPv6(L"Many", std::vector<std::string>(40, "fe80::1:1"));
    EXPECT_THAT(SendersOf(1), SizeIs(32));
    EXPECT_THAT(Told(), HasSubstr("-------------- ...nCount [32]\n"));
}

TEST_F(IPv6Adapters, AreAskedForThreeTimesAtMostWithTheRoomTheyNeed) {
    adapters.AddIPv6(L"Up", {"fe80::1:1"});
    adapters.needs = 50000;
    EXPECT_THAT(SendersOf(1), ElementsAre("fe80::1:1"));
    EXPECT_THAT(adapters.sizes, ElementsAre(15000, 50000));
    adapters.sizes.clear();
    adapters.alwaysNeeds = 100;
    EXPECT_THAT(SendersOf(1), IsEmpty());
    EXPECT_THAT(adapters.sizes, ElementsAre(15000, 15100, 15200));
    adapters.sizes.clear();
    adapters.error = 9852;
    EXPECT_THAT(SendersOf(1), IsEmpty());
    EXPECT_THAT(adapters.sizes, SizeIs(1)) << "any other failure is final";
}

}  // namespace
}  // namespace vndiscover
