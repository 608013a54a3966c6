// A network of devices that answer everything with something malformed (hostile.py).
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "exports/support/module.h"
#include "exports/support/result_window.h"
#include "hardening/directed_calls.h"
#include "hardening/quick_waits.h"

namespace vndiscover {
namespace {

constexpr u_short kControlPort = 47163;
constexpr char kProbe[] = "<s:Envelope><s:Body><d:Probe/></s:Body></s:Envelope>";
constexpr wchar_t kJson[] = L"{\"GET\":{\".1.3.6.1.2.1.1.5.0\":\"\",\".1.3.6.1.2.1.1.6.0\":\"\"}}";

unsigned long Setting(const char* name, unsigned long otherwise) {
    const char* text = std::getenv(name);
    return text ? std::strtoul(text, nullptr, 10) : otherwise;
}

// Moves hostile.py.
class Devices {
  public:
    Devices() {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
        socket_ = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
        sockaddr_in peer = {};
        peer.sin_family = AF_INET;
        peer.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        peer.sin_port = htons(kControlPort);
        connect(socket_, reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
    }
    ~Devices() {
        closesocket(socket_);
        WSACleanup();
    }

    // Returns the answers sent so far.
    unsigned long Tell(const std::string& command) {
        send(socket_, command.data(), static_cast<int>(command.size()), 0);
        char text[64] = {};
        if (recv(socket_, text, sizeof text - 1, 0) <= 3) throw std::runtime_error("no hostile.py");
        return std::strtoul(text + 3, nullptr, 10);
    }

  private:
    SOCKET socket_;
};

class HostileNetwork : public testing::Test {
  protected:
    void SweepV1(int burst) {
        devices.Tell("burst " + std::to_string(burst));
        module.DiscoverDevices(window.Handle(), window.kMessage, 0, 0, nullptr, nullptr, nullptr);
        CheckEnd("a sweep");
    }
    void SweepJson() {
        devices.Tell("burst 40");
        module.DiscoverDevicesByOIDjson(window.Handle(), window.kMessage, 0, 0, kJson, nullptr,
                                        nullptr, nullptr);
        CheckEnd("a JSON sweep");
    }
    void SweepV3() {
        devices.Tell("burst 60");
        module.DiscoverSnmpV3(window.Handle(), window.kMessage, 0, 0, L"user", 1, L"authpass1", 1,
                              L"privpass1", VN_AUTH_MD5, VN_PRIV_DES);
        EXPECT_LE(window.results.size(), 60u);
        window.results.clear();
    }
    void SweepWsd() {
        devices.Tell("burst 600");
        module.DiscoverSoap(replies.Handle(), replies.kMessage, 1000, kProbe, sizeof kProbe - 1);
        EXPECT_LE(replies.results.size(), 601u);
        ASSERT_FALSE(replies.results.empty());
        EXPECT_TRUE(replies.results.back().isEnd);
        replies.results.clear();
    }
    void Direct() {
        for (int i = 0; i < 60; ++i) calls.CallV1(i % DirectedCalls::kKindsV1);
        for (int i = 0; i < 30; ++i) calls.CallV3(i % DirectedCalls::kKindsV3);
    }
    void CheckEnd(const char* what) {
        ASSERT_FALSE(window.results.empty()) << what;
        EXPECT_TRUE(window.results.back().isEnd) << what;
        for (const Result& result : window.results) EXPECT_LT(result.value.size(), 4096u) << what;
        window.results.clear();
    }

    Module module;
    QuickWaits waits{module};
    ResultWindow window;
    ResultWindow replies{VN_SOAP_REPLY_SIZE};
    Devices devices;
    DirectedCalls calls{module, "10.77.1.2"};
};

// VNDISCOVER_HOSTILE_ANSWERS: how many to go through; VNDISCOVER_HOSTILE_SEED: where the mutations
// start.
TEST_F(HostileNetwork, HarmsNobodyWithMutatedAnswers) {
    const unsigned long wanted = Setting("VNDISCOVER_HOSTILE_ANSWERS", 5000);
    const unsigned long seed = Setting("VNDISCOVER_HOSTILE_SEED", 1);
    unsigned long sent = devices.Tell("seed " + std::to_string(seed));
    int rounds = 0;
    for (; sent < wanted && !HasFailure(); sent = devices.Tell("burst 1"), ++rounds) {
        SweepV1(1500);
        SweepJson();
        SweepV3();
        SweepWsd();
        Direct();
    }
    std::printf("seed %lu: %lu mutated answers in %d rounds\n", seed, sent, rounds);
}

}  // namespace
}  // namespace vndiscover
