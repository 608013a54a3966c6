// Sweeps over IPv6 link-local addresses.
#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;

class SweepIPv6 : public QuickLabTest {};

TEST_F(SweepIPv6, AsksAllNodesFromEveryLinkLocalAddress) {
    SilentDevices();
    Sweep(nullptr, 1);
    std::vector<std::string> ways;
    for (const Request& request : agents->Requests()) {
        ways.push_back(request.sender + " > " + request.local + ' ' + std::to_string(request.port) +
                       ' ' + request.net);
        EXPECT_EQ(SnmpGet(kDefaultOid), request.data);
    }
    // The host itself, which is one of all nodes, hears nothing.
    EXPECT_THAT(ways, ElementsAre("fe80::1:1 > ff02::1 161 neta", "fe80::2:1 > ff02::1 161 netb"));
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
}

TEST_F(SweepIPv6, DeliversAddressesWithoutZone) {
    Devices([](const Request& request) {
        if (request.net == "netb") return std::vector<Answer>{{SnmpText("C")}};
        return std::vector<Answer>{{SnmpText("B"), "fe80::1:12"}, {SnmpText("A"), "fe80::1:11"}};
    });
    Sweep(nullptr, 255);
    EXPECT_THAT(window.Texts(), ElementsAre("fe80::1:12=B", "fe80::1:11=A", "fe80::2:2=C", "end"));
}

TEST_F(SweepIPv6, AsksFurtherQuestionsFromTheAdapterOfTheDevice) {
    Devices([](const Request& request) {
        if (request.net != "netb") return std::vector<Answer>();
        return std::vector<Answer>{
            {SnmpText("asked at " + request.local + " by " + request.sender)}};
    });
    module.DiscoverDevicesByOIDjson(window.Handle(), window.kMessage, 0, 1,
                                    L"{\"GET\": {\".1.3.6.1.2.1.1.5.0\": \"\"}}", nullptr, nullptr,
                                    nullptr);
    EXPECT_THAT(window.Texts(), ElementsAre("fe80::2:2={\n\t\"GET\":\t{\n"
                                            "\t\t\".1.3.6.1.2.1.1.5.0\":\t"
                                            "\"asked at fe80::2:2 by fe80::2:1\"\n\t}\n}",
                                            "end"));
}

}  // namespace
}  // namespace vndiscover
