// A thousand directed requests in one process: what they leave behind, and what one costs.
#include <cstdio>

#include "exports/support/lab_test.h"
#include "support/win.h"

#include <psapi.h>

namespace vndiscover {
namespace {

constexpr char kHost[] = "10.77.1.11";
constexpr int kRequests = 1000;
constexpr int kWarmUp = 100;  // the process's first requests load libraries and grow its heap once

class DirectedLoop : public LabTest {
  protected:
    DirectedLoop() {
        SilentDevices();
        agents->AnswerByItself("neta", 161, SnmpText("Model"));
    }
    void Get() {
        char text[VN_REQUEST_VALUE_SIZE];
        ASSERT_EQ(5, module.GetSnmpRequest(kHost, kDefaultOid, text, sizeof text,
                                           VN_TYPE_OCTET_STRING, 0, 0, nullptr, nullptr));
    }
    // The same exchange with nothing around it.
    void BareGet(const Bytes& request) {
        const SOCKET bare = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
        sockaddr_in to = {};
        to.sin_family = AF_INET;
        to.sin_port = htons(161);
        to.sin_addr.s_addr = inet_addr(kHost);
        sendto(bare, reinterpret_cast<const char*>(request.data()),
               static_cast<int>(request.size()), 0, reinterpret_cast<const sockaddr*>(&to),
               sizeof to);
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(bare, &readable);
        timeval wait = {2, 0};
        select(0, &readable, nullptr, nullptr, &wait);
        char answer[2048];
        EXPECT_GT(recvfrom(bare, answer, sizeof answer, 0, nullptr, nullptr), 0);
        closesocket(bare);
    }
    static size_t OpenHandles() {
        DWORD handles = 0;
        GetProcessHandleCount(GetCurrentProcess(), &handles);
        return handles;
    }
    static size_t PrivateBytes() {
        PROCESS_MEMORY_COUNTERS_EX memory = {};
        K32GetProcessMemoryInfo(GetCurrentProcess(),
                                reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory), sizeof memory);
        return memory.PrivateUsage;
    }
    template <class Work>
    static double MicrosecondsEach(Work work) {
        const int64_t started = NowMs();
        for (int i = 0; i < kRequests; ++i) work();
        return static_cast<double>(NowMs() - started) * 1000.0 / kRequests;
    }
};

TEST_F(DirectedLoop, LeavesNoHandlesAndNoMemoryBehind) {
    for (int i = 0; i < kWarmUp; ++i) Get();
    const size_t handles = OpenHandles();
    const size_t bytes = PrivateBytes();
    const double each = MicrosecondsEach([&] { Get(); });
    EXPECT_EQ(handles, OpenHandles());
    EXPECT_LE(PrivateBytes(), bytes + 256 * 1024) << "a quarter of a kilobyte per request";

    const Bytes request = SnmpGet(kDefaultOid);
    const double bare = MicrosecondsEach([&] { BareGet(request); });
    std::printf("a directed request takes %.0f us, a bare exchange %.0f us\n", each, bare);
}

}  // namespace
}  // namespace vndiscover
