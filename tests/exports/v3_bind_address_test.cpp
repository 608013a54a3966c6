// Which local address an SNMPv3 request to an IPv6 device leaves from.
#include "exports/support/v3_devices.h"

namespace vndiscover {
namespace {

using testing::Each;

class V3BindAddress : public V3Test {
  protected:
    Waits waits{module};
};

TEST_F(V3BindAddress, IsTheSecondAdaptersWhenTheTrialCannotBeSent) {
    Devices([](const Request& request) {
        if (request.net != "netb") return Answers();
        return Answers{{request.data == V3Probe() ? V3Report() : V3Text("Model")}};
    });
    char text[VN_REQUEST_VALUE_SIZE] = {};
    const Sends sends(module, [](int call) { return call == 1 ? WSAENETUNREACH : 0; });
    user.Ask([&](auto... security) {
        return module.GetSnmpRequestV3("fe80::2:2", kDefaultOid, text, sizeof text, nullptr, 0, 0,
                                       security...);
    });
    EXPECT_STREQ("Model", text);
    EXPECT_THAT(Ways(), Each("fe80::2:1 > fe80::2:2:161"));
}

}  // namespace
}  // namespace vndiscover
