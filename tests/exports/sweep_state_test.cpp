// How a sweep affects the next one, one that a host starts within it, and the process.
#include <fcntl.h>
#include <stdlib.h>

#include "exports/support/v3_test.h"

namespace vndiscover {
namespace {

constexpr wchar_t kPath[] = L"devices.csv";
constexpr char kTwoDevices[] = "\"10.77.1.2\",\"A\"\r\n\"10.77.1.2\",\"B\"\r\n";

std::string TakeFile(const char* path) {
    const std::string content = ReadFile(path);
    std::remove(path);
    return content;
}

class SweepState : public V3Test {
  protected:
    SweepState() {
        Devices([](const Request& request) {
            if (request.net != "neta") return Answers();
            if (request.data == V3Discovery()) return Answers{{V3Report()}};
            if (request.data == V3Request(kDefaultOid)) return Answers{{V3Text("V3")}};
            return Answers{{SnmpText("A")}, {SnmpText("B")}};
        });
    }
    ResultWindow other;
};

TEST_F(SweepState, NestedSweepDoesNotDisturbARunningOne) {
    window.onResult = [&](const Result& result) {
        if (result.isEnd) return;
        module.DiscoverDevices(other.Handle(), other.kMessage, 0, 0, kPath, nullptr, nullptr);
        module.DiscoverSnmp(other.Handle(), other.kMessage, 0, 0, nullptr, nullptr);
        SweepV3(other);
    };
    Sweep(kPath);
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
    EXPECT_EQ(kTwoDevices, TakeFile("devices.csv"));
    EXPECT_THAT(Requests(), SizeIs(2)) << "one of each adapter";
    window.results.clear();
    SweepV3(window);
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=V3"));
    EXPECT_THAT(other.results, IsEmpty());
}

TEST_F(SweepState, NextSweepMayStartWithinTheFinalMessage) {
    window.onResult = [&](const Result& result) {
        if (result.isEnd) module.DiscoverSnmp(other.Handle(), other.kMessage, 0, 0, "next", "");
    };
    Sweep(kPath);
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
    EXPECT_EQ(window.Texts(), other.Texts());
    EXPECT_EQ(kTwoDevices, TakeFile("devices.csv")) << "of the first alone";
    window.onResult = [&](const Result& result) {
        if (!result.isEnd) return;
        SilentDevices();
        module.DiscoverDevices(other.Handle(), other.kMessage, 0, 0, kPath, nullptr, nullptr);
    };
    Sweep(kPath);
    EXPECT_EQ("", TakeFile("devices.csv")) << "of the next one, which found nothing";
}

int g_allocationsLeft;

TEST_F(SweepState, NextSweepMayStartWhicheverAllocationFails) {
    for (const bool isV1 : {true, false}) {
        const auto sweep = [&] { isV1 ? Sweep() : static_cast<void>(SweepV3(window)); };
        sweep();
        const Lines whole = window.Texts();
        int failed = 0;
        for (g_allocationsLeft = -1; g_allocationsLeft < 0; ++failed) {
            window.results.clear();
            g_allocationsLeft = failed;
            const ImportPatch patch(module.Handle(), "malloc", [](size_t size) {
                return g_allocationsLeft-- == 0 ? nullptr : std::malloc(size);
            });
            sweep();
            if (isV1) {
                ASSERT_THAT(window.Texts(), Contains("end")) << "allocation " << failed;
            }
        }
        EXPECT_GT(failed, 10);
        EXPECT_EQ(whole, window.Texts()) << "in the end none has failed";
        window.results.clear();
    }
}

// A truncated OID could name another variable.
TEST_F(SweepState, DiscoveryOidOf260CharactersIsRefused) {
    const auto request = [](size_t size) {  // kSysName in this many characters
        return L"{\"DiscoverOID\": \".1.3.6.1.2.1.1.5." + std::wstring(size - 17, L'0') + L"\"}";
    };
    SilentDevices();
    for (const size_t size : {260, 1000}) {
        SweepFor(request(size));
        SweepV3(window, request(size).c_str());
    }
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_THAT(window.Texts(), ElementsAre("end", "end"));
    SweepFor(request(259));
    EXPECT_THAT(Sent(), ElementsAre(SnmpGet(kSysName), SnmpGet(kSysName)));
    SweepV3(window, request(259).c_str());
    EXPECT_THAT(Sent(), SizeIs(4));
}

TEST_F(SweepState, EachSweepHasANewSocketObject) {
    SilentDevices();
    Sweep();
    SweepV3(window);
    SweepV3(window);
    EXPECT_THAT(log.Lines(), Contains("SCKRAW::SCKRAW()\n").Times(3));
}

// Even if the host has made binary its runtime's default.
TEST_F(SweepState, FilesAreWrittenInTextMode) {
    const int before = _fmode;
    _fmode = _O_BINARY;
    switches.SetOn("Dbg2Log");
    Reload();
    Sweep(kPath);
    _fmode = before;
    switches.Remove("Dbg2Log");
    Reload();
    EXPECT_EQ(kTwoDevices, TakeFile("devices.csv"));
    const std::string written = TakeFile("VxAdmSvc.log");
    EXPECT_THAT(written, HasSubstr("SNMP::Discover\r\n"));
    EXPECT_THAT(written, HasSubstr("SNMP::Discover - ended\r\n"));
}

int g_references;

// The module is unloaded under the loader lock, where the last clean-up could wait for ever.
TEST(WinSockReferences, OneRemainsWhenTheModuleIsUnloadedAfterASweep) {
    const std::function<void(const Module&)> sweeps[] = {
        [](const Module& module) { module.DiscoverSnmp(nullptr, 0, 0, 0, nullptr, nullptr); },
        [](const Module& module) {
            module.DiscoverSnmpV3(nullptr, 0, 0, 0, L"user", 0, nullptr, 0, nullptr, nullptr,
                                  nullptr);
        },
        [](const Module& module) { module.DiscoverSoap(nullptr, 0, 0, "probe", 5); }};
    for (const auto& sweep : sweeps) {
        g_references = 0;
        {
            const Module module;
            // Not released: the test is what unloading does.
            new ImportPatch(module.Handle(), "WSAStartup", [](WORD version, WSADATA* data) {
                ++g_references;
                return WSAStartup(version, data);
            });
            new ImportPatch(module.Handle(), "WSACleanup", [] {
                --g_references;
                return WSACleanup();
            });
            const ScriptedNetwork network(module);
            sweep(module);
        }
        EXPECT_EQ(1, g_references) << "sweep " << &sweep - sweeps;
    }
}

}  // namespace
}  // namespace vndiscover
