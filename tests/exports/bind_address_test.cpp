// Which local address a request to an IPv6 device leaves from.
#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::SizeIs;

constexpr char kInNetA[] = "fe80::1:11";
constexpr char kInNetB[] = "fe80::2:2";

class BindAddress : public LoggedTest {
  protected:
    // A device answers only what comes from its own network's adapter.
    BindAddress() {
        Devices([this](const Request& request) {
            if (!answering || !IsNeighbour(request)) return std::vector<Answer>();
            return std::vector<Answer>{{SnmpText("Model")}};
        });
    }
    static bool IsNeighbour(const Request& request) {
        return request.sender == (request.net == "neta" ? "fe80::1:1" : "fe80::2:1");
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

    bool answering = true;
    size_t seen = 0;
};

TEST_F(BindAddress, IsTheFirstAdaptersWhereItsTrialIsAnswered) {
    EXPECT_EQ("Model", Get(kInNetA));
    EXPECT_THAT(Senders(), ElementsAre("fe80::1:1", "fe80::1:1"));
    EXPECT_THAT(waits.Silent(), SizeIs(0));
}

TEST_F(BindAddress, IsTheSecondAdaptersAfterOneSilentWaitAndStays) {
    EXPECT_EQ("Model", Get(kInNetB));
    EXPECT_THAT(waits.Silent(), SizeIs(1)) << "the trial from the first";
    EXPECT_EQ("fe80::2:1", Senders().back());
    EXPECT_EQ("Model", Get(kInNetB));
    EXPECT_THAT(waits.Silent(), SizeIs(1));
    EXPECT_THAT(Senders(), ElementsAre("fe80::2:1", "fe80::2:1")) << "remembered";
}

// Only the first two rows are ever tried, and there is no way back to the first.
TEST_F(BindAddress, StaysTheSecondAdaptersForADeviceOfTheFirst) {
    Get(kInNetB);
    const size_t before = waits.Silent().size();
    EXPECT_EQ("(nothing)", Get(kInNetA));
    EXPECT_THAT(waits.Silent(), SizeIs(before + 1 + 5));
    module.Reload();
    const Waits again(module);
    EXPECT_EQ("Model", Get(kInNetA)) << "a module that is loaded anew starts with the first";
}

TEST_F(BindAddress, IsLoggedWithTheAddressesItIsChosenFrom) {
    Get(kInNetB);
    const auto exchange = Lines{"SNMP::GetInformation - [fe80::2:2]\n"};
    const auto opened = [](const std::string& address) {
        return Lines{" tszBindAddr [" + address + "]\n"};
    };
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(
            Lines{"g_nAdapter [0]\n"} + IPv6ListingLines() +
            Lines{" pStringBuf [fe80::1:1]\n", "g_adapterAddr[g_nAdapter].szAddress [fe80::1:1]\n",
                  " pStringBuf [fe80::2:1]\n", "g_adapterAddr[g_nAdapter].szAddress [fe80::2:1]\n",
                  "VxSNMP::VxSNMP()\n"} +
            exchange + Lines{"SCKRAW::SCKRAW()\n"} + DefaultRequestLines() + opened("fe80::1:1") +
            Lines{"RecvFrom - Timeout\n", "szBindIp [fe80::2:1]\n"} + exchange +
            DefaultRequestLines() + opened("fe80::2:1") +
            Lines{"VxSnmpMgr::~VxSnmpMgr()\n", "SCKRAW::~SCKRAW() [-1]\n"}));
    log.Clear();
    Get(kInNetB);
    EXPECT_EQ("g_nAdapter [2]\n", log.Lines().front());
}

TEST_F(BindAddress, IsNotChosenForIPv4) {
    Get(kInNetB);
    log.Clear();
    char text[VN_INFORMATION_SIZE];
    answering = false;
    module.GetSnmpInformation("10.77.1.11", text, nullptr, nullptr);
    EXPECT_TRUE(log.Has("szBindIp []\n"));
    EXPECT_EQ("10.77.1.1", Senders().back());
}

}  // namespace
}  // namespace vndiscover
