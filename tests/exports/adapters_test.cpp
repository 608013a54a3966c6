// Which adapters of the host a sweep leaves from, for lists that only few machines have.
#include "exports/support/logged_test.h"
#include "exports/support/scripted_adapters.h"

namespace vndiscover {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AdaptersTest : public LoggedTest {
  protected:
    // Where the sweep's sockets are bound matters here and not what comes back, so each phase ends
    // at once.
    AdaptersTest() : receives(module, [](int) { return WSANOTINITIALISED; }) { SilentDevices(); }

    std::vector<std::string> Senders() {
        std::vector<std::string> senders;
        for (const Request& request : agents->Requests()) senders.push_back(request.sender);
        return senders;
    }
    size_t Count(const std::string& line) const {
        const Lines lines = log.Lines();
        return static_cast<size_t>(std::count(lines.begin(), lines.end(), line));
    }

    ScriptedAdapters adapters{module};
    Receives receives;
};

class IPv4Adapters : public AdaptersTest {
  protected:
    // "address, mask" of each adapter that the log names, in order.
    std::vector<std::string> Named() const {
        std::vector<std::string> named;
        const std::string start = "   IP   = [";
        for (const std::string& line : log.Lines()) {
            if (line.rfind(start, 0) == 0) {
                named.push_back(line.substr(start.size(), line.size() - start.size() - 2));
            }
        }
        return named;
    }
};

TEST_F(IPv4Adapters, AreNumberedInTheSystemsOrderAddressByAddress) {
    adapters.ipv4 = {{"First", {{"10.77.2.1", "255.255.255.0"}, {"10.77.1.1", "255.255.0.0"}}},
                     {"Second", {{"10.77.1.1", "255.255.255.0"}}}};
    Sweep();
    EXPECT_THAT(Named(), ElementsAre("10.77.2.1, 255.255.255.0", "10.77.1.1, 255.255.0.0",
                                     "10.77.1.1, 255.255.255.0"));
    EXPECT_EQ(2u, Count("   DESC = [First]\n"));
    EXPECT_EQ(1u, Count("   DESC = [Second]\n"));
    EXPECT_TRUE(log.Has("NIC [2]\n"));
    EXPECT_THAT(Senders(), ElementsAre("10.77.2.1", "10.77.1.1", "10.77.1.1"));
}

// 0.0.0.0 is an adapter without an address: the system chooses one.
TEST_F(IPv4Adapters, CountWithoutAnAddressAndNotWithoutText) {
    adapters.ipv4 = {{"Empty address", {{"", "255.255.255.0"}}},
                     {"Empty mask", {{"10.77.2.1", ""}}},
                     {"Unplugged", {{"0.0.0.0", "0.0.0.0"}}}};
    Sweep();
    EXPECT_THAT(Named(), ElementsAre("0.0.0.0, 0.0.0.0"));
    EXPECT_THAT(Senders(), ElementsAre("10.77.1.1"));
}

TEST_F(IPv4Adapters, AreUsedUnboundWhereTheirAddressIsGone) {
    adapters.ipv4 = {{"Gone", {{"10.99.9.9", "255.255.255.0"}}}};
    Sweep();
    EXPECT_THAT(Senders(), ElementsAre("10.77.1.1"));
}

TEST_F(IPv4Adapters, AreAllUsedUpTo32AndNoneBeyond) {
    adapters.ipv4.assign(32, {"Many", {{"10.77.1.1", "255.255.255.0"}}});
    Sweep();
    EXPECT_THAT(Senders(), SizeIs(32));
    adapters.ipv4.push_back(adapters.ipv4.front());
    log.Clear();
    window.results.clear();
    Sweep();
    EXPECT_THAT(Named(), IsEmpty());
    EXPECT_THAT(Senders(), SizeIs(32));
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
    EXPECT_THAT(adapters.sizes, Each(22528)) << "and nobody asks again with more room";
    EXPECT_THAT(adapters.sizes, SizeIs(2));
}

TEST_F(IPv4Adapters, MayBeNone) {
    Sweep();
    EXPECT_THAT(adapters.sizes, SizeIs(1));
    EXPECT_THAT(Senders(), IsEmpty());
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
}

// An installer runs from a download folder, where anybody may have put a file of that name.
TEST_F(IPv4Adapters, AreListedByALibraryOfTheSystemDirectory) {
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    Sweep();
    Sweep(nullptr, 1);
    ASSERT_THAT(adapters.loaded, Contains(folder + std::wstring(L"\\IPHLPAPI.DLL")));
    for (const std::wstring& path : adapters.loaded) {
        EXPECT_EQ(0u, path.rfind(folder + std::wstring(L"\\"), 0))
            << std::string(path.begin(), path.end());
    }
}

class IPv6Adapters : public AdaptersTest {};

TEST_F(IPv6Adapters, AreUsedByTheirLinkLocalAddressesWhileTheyAreUp) {
    adapters.ipv6 = {{L"Down", {"fe80::1:1"}, false},
                     {L"Up", {"2001:db8::1", "fe80::2:1", "fd00::1", "fec0::1"}},
                     {L"Nothing", {}},
                     {L"Too", {"::1", "fe80::1:1"}}};
    Sweep(nullptr, 1);
    EXPECT_THAT(Senders(), ElementsAre("fe80::2:1", "fe80::1:1"));
    const Lines lines = log.Lines();
    const auto listing = std::find(lines.begin(), lines.end(), "\tFriendly name: Down\n");
    const Lines expected = {"\tFriendly name: Down\n",
                            " pStringBuf [fe80::1:1]\n",
                            "IPADDRESS ....fe80::1:1",
                            "    Link local....\n",
                            "\tNumber of Unicast Addresses: 1\n",
                            "\tIfType: 6\n",
                            "\tOperStatus: 2\n",
                            "---------------------\n",
                            "\tFriendly name: Up\n",
                            " pStringBuf [2001:db8::1]\n",
                            "IPADDRESS ....2001:db8::1",
                            " pStringBuf [fe80::2:1]\n",
                            "IPADDRESS ....fe80::2:1",
                            "    Link local....\n",
                            " pStringBuf [fd00::1]\n",
                            "IPADDRESS ....fd00::1",
                            " pStringBuf [fec0::1]\n",
                            "IPADDRESS ....fec0::1",
                            "\tNumber of Unicast Addresses: 4\n",
                            "\tIfType: 6\n",
                            "\tOperStatus: 1\n",
                            "---------------------\n",
                            "\tFriendly name: Nothing\n",
                            "\tNo Unicast Addresses\n"};
    ASSERT_LE(static_cast<std::ptrdiff_t>(expected.size()), lines.end() - listing);
    EXPECT_EQ(expected, Lines(listing, listing + static_cast<std::ptrdiff_t>(expected.size())));
}

TEST_F(IPv6Adapters, AreFoundByAddressesInUpperCase) {
    adapters.ipv6 = {{L"Up", {"fe80::2:1"}}};
    adapters.addressesInUpperCase = true;
    Sweep(nullptr, 1);
    EXPECT_TRUE(log.Has("IPADDRESS ....fe80::2:1"));
    EXPECT_THAT(Senders(), ElementsAre("fe80::2:1"));
}

TEST_F(IPv6Adapters, AreUsedUpTo32) {
    adapters.ipv6.assign(40, {L"Many", {"fe80::1:1"}});
    Sweep(nullptr, 1);
    EXPECT_TRUE(log.Has("-------------- ...nCount [32]\n"));
    EXPECT_THAT(Senders(), SizeIs(32));
}

// A long name, so that the list is larger than the first buffer.
TEST_F(IPv6Adapters, AreAskedForAgainWithTheRoomTheyNeed) {
    adapters.ipv6 = {{std::wstring(20000, L'x'), {"fe80::1:1"}}};
    Sweep(nullptr, 1);
    EXPECT_THAT(Senders(), ElementsAre("fe80::1:1"));
    ASSERT_THAT(adapters.sizes, SizeIs(2));
    EXPECT_EQ(15000u, adapters.sizes[0]);
    EXPECT_GT(adapters.sizes[1], 40000u);
}

TEST_F(IPv6Adapters, AreGivenUpAfterThreeListsThatGrew) {
    adapters.alwaysNeeds = 100;
    Sweep(nullptr, 1);
    EXPECT_THAT(adapters.sizes, ElementsAre(15000, 15100, 15200));
    EXPECT_TRUE(log.Has("-------------- ...nCount [0]\n"));
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
}

TEST_F(IPv6Adapters, MayFailToBeListed) {
    adapters.error = 9852;
    Sweep(nullptr, 1);
    EXPECT_THAT(adapters.sizes, SizeIs(1));
    EXPECT_TRUE(log.Has("-------------- ...nCount [0]\n"));
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
}

}  // namespace
}  // namespace vndiscover
