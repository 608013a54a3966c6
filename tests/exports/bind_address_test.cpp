// Which local address a request to an IPv6 device leaves from.
#include "exports/support/logged_test.h"
#include "exports/support/scripted_adapters.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kInNetA[] = "fe80::1:11";
constexpr char kInNetB[] = "fe80::2:2";

class BindAddress : public LoggedTest {
  protected:
    // A device answers only what comes from its own network's adapter.
    BindAddress() {
        Devices([](const Request& request) {
            const bool isNeighbour =
                request.sender == (request.net == "neta" ? "fe80::1:1" : "fe80::2:1");
            return isNeighbour ? std::vector<Answer>{{SnmpText("Model")}} : std::vector<Answer>();
        });
    }
    std::string Get(const char* host) {
        char text[VN_INFORMATION_SIZE] = "(nothing)";
        module.GetSnmpInformation(host, text, nullptr, nullptr);
        return text;
    }
    // The local addresses of the requests that left since the last call.
    std::vector<std::string> Senders() {
        std::vector<std::string> senders;
        const std::vector<Request> requests = agents->Requests();
        for (; seen < requests.size(); ++seen) senders.push_back(requests[seen].sender);
        return senders;
    }

    size_t seen = 0;
};

TEST_F(BindAddress, IsTheFirstAdaptersUnlessItsTrialPassesSilently) {
    EXPECT_EQ("Model", Get(kInNetA));
    EXPECT_THAT(Senders(), ElementsAre("fe80::1:1", "fe80::1:1"));
    // A trial that cannot be sent is not one without an answer.
    const Sends sends(module, [](int call) { return call == 1 ? WSAENETUNREACH : 0; });
    EXPECT_EQ("Model", Get(kInNetA));
    EXPECT_THAT(Senders(), ElementsAre("fe80::1:1"));
    EXPECT_THAT(waits.Silent(), IsEmpty());
}

// Only the first two rows are ever tried, and there is no way back to the first.
TEST_F(BindAddress, IsTheSecondAdaptersAfterOneSilentWaitAndStays) {
    EXPECT_EQ("Model", Get(kInNetB));
    EXPECT_THAT(waits.Silent(), SizeIs(1)) << "the trial from the first";
    EXPECT_EQ("fe80::2:1", Senders().back());
    EXPECT_EQ("Model", Get(kInNetB));
    EXPECT_THAT(Senders(), ElementsAre("fe80::2:1", "fe80::2:1")) << "remembered";
    EXPECT_EQ("(nothing)", Get(kInNetA));
    EXPECT_THAT(waits.Silent(), SizeIs(1 + 1 + 5));

    module.GetSnmpInformation("10.77.1.11", nullptr, nullptr, nullptr);
    EXPECT_EQ("10.77.1.1", Senders().back()) << "an IPv4 device is asked unbound";
    EXPECT_TRUE(log.Has("szBindIp []\n"));

    module.Reload();
    const Waits again(module);
    EXPECT_EQ("Model", Get(kInNetA)) << "a module that is loaded anew starts with the first";
}

TEST_F(BindAddress, IsOneOfTheFirstTwoOfTheList) {
    using List = std::vector<std::string>;
    for (const List& list : {List{"fe80::1:1"}, List{"fe80::1:1", "fe80::1:1", "fe80::2:1"}}) {
        module.Reload();
        ScriptedAdapters adapters(module);
        const Waits again(module);
        adapters.AddIPv6(L"Adapter", list);
        log.Clear();
        EXPECT_EQ("(nothing)", Get(kInNetB));
        EXPECT_TRUE(log.Has("szBindIp [fe80::1:1]\n"));
        EXPECT_THAT(again.Silent(), SizeIs(1 + 5));
    }
}

TEST_F(BindAddress, IsLoggedWithTheAddressesItIsChosenFrom) {
    const auto exchange = [](const char* from) {
        return DefaultRequestLines({"SNMP::GetInformation - [fe80::2:2]\n"}) +
               Lines{std::string(" tszBindAddr [") + from + "]\n"};
    };
    const Lines trial = {"VxSNMP::VxSNMP()\n", "SCKRAW::SCKRAW()\n"};
    const Lines request = Lines{"szBindIp [fe80::2:1]\n"} + exchange("fe80::2:1") +
                          Lines{"VxSnmpMgr::~VxSnmpMgr()\n", "SCKRAW::~SCKRAW() [-1]\n"};
    Get(kInNetB);
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(Lines{"g_nAdapter [0]\n"} + IPv6ListingLines() +
                         Lines{" pStringBuf [fe80::1:1]\n",
                               "g_adapterAddr[g_nAdapter].szAddress [fe80::1:1]\n",
                               " pStringBuf [fe80::2:1]\n",
                               "g_adapterAddr[g_nAdapter].szAddress [fe80::2:1]\n"} +
                         trial + exchange("fe80::1:1") + Lines{"RecvFrom - Timeout\n"} + request));
    log.Clear();
    Get(kInNetB);
    EXPECT_THAT(log.Lines(), ElementsAreArray(Lines{"g_nAdapter [2]\n"} + trial +
                                              exchange("fe80::2:1") + request));
}

}  // namespace
}  // namespace vndiscover
