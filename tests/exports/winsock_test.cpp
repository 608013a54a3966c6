// The module's WinSock references.
#include <algorithm>
#include <functional>

#include "exports/support/logged_test.h"
#include "exports/support/v3_devices.h"

namespace vndiscover {
namespace {

int g_references;

int WSAAPI Start(WORD version, WSADATA* data) {
    const int error = WSAStartup(version, data);
    if (error == 0) ++g_references;
    return error;
}

int WSAAPI CleanUp() {
    --g_references;
    return WSACleanup();
}

int32_t SweepV3(const Module& module) {
    return V3User().Ask(
        [&](auto... security) { return module.DiscoverSnmpV3(nullptr, 0, 0, 0, security...); });
}

// The module ends under the loader's lock, where the last clean-up could wait for ever.
TEST(WinSockReferences, OneStaysWhenTheModuleIsUnloadedAfterASweep) {
    const std::function<void(const Module&)> sweeps[] = {
        [](const Module& module) { module.DiscoverSnmp(nullptr, 0, 0, 0, nullptr, nullptr); },
        [](const Module& module) { SweepV3(module); },
        [](const Module& module) { module.DiscoverSoap(nullptr, 0, 0, "probe", 5); }};
    for (const auto& sweep : sweeps) {
        g_references = 0;
        {
            const Module module;
            // Never taken back: what the unloading does is the test.
            new ImportPatch(module.Handle(), "WSAStartup", Start);
            new ImportPatch(module.Handle(), "WSACleanup", CleanUp);
            const Waits waits(module);
            sweep(module);
        }
        EXPECT_EQ(1, g_references) << "sweep " << &sweep - sweeps;
    }
}

class SocketObjects : public LoggedTest {};

TEST_F(SocketObjects, AreMadeAnewForEverySweepOfEveryVersion) {
    SilentDevices();
    const auto made = [this] {
        const Lines lines = log.Lines();
        return std::count(lines.begin(), lines.end(), "SCKRAW::SCKRAW()\n");
    };
    Sweep();
    SweepV3(module);
    SweepV3(module);
    EXPECT_EQ(3, made());
}

}  // namespace
}  // namespace vndiscover
