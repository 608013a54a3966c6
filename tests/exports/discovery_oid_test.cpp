// How long the OID texts of a JSON request may be.
#include "exports/support/v3_devices.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class DiscoveryOid : public V3Test {
  protected:
    DiscoveryOid() { SilentDevices(); }
    // kSysName as so many characters.
    static std::wstring RequestWith(size_t size) {
        return L"{\"DiscoverOID\": \".1.3.6.1.2.1.1.5." + std::wstring(size - 17, L'0') + L"\"}";
    }
    void SweepV3(const std::wstring& request) {
        user.Ask([&](auto... security) {
            return module.DiscoverV3DevicesByOIDjson(window.Handle(), window.kMessage, 0, 0,
                                                     request.c_str(), security...);
        });
    }

    Waits waits{module};
};

// Cut, it could name another variable.
TEST_F(DiscoveryOid, From260CharactersOnIsNotSent) {
    for (const size_t size : {260, 1000}) {
        SweepFor(RequestWith(size));
        SweepV3(RequestWith(size));
    }
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_THAT(window.Texts(), ElementsAre("end", "end"));
    SweepFor(RequestWith(259));
    EXPECT_THAT(Sent(), ElementsAre(SnmpGet(kSysName), SnmpGet(kSysName)));
    SweepV3(RequestWith(259));
    EXPECT_THAT(Sent(), SizeIs(4));
}

}  // namespace
}  // namespace vndiscover
