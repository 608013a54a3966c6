// A thousand directed requests in one process leave nothing behind; bench/ tells what one costs.
#include "exports/support/lab_test.h"
#include "support/win.h"

#include <psapi.h>

namespace vndiscover {
namespace {

constexpr int kRequests = 1000;
constexpr int kWarmUp = 100;  // the process's first requests load libraries and grow its heap once

size_t OpenHandles() {
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return handles;
}

size_t PrivateBytes() {
    PROCESS_MEMORY_COUNTERS_EX memory = {};
    K32GetProcessMemoryInfo(GetCurrentProcess(),
                            reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory), sizeof memory);
    return memory.PrivateUsage;
}

class DirectedLoop : public LabTest {};

TEST_F(DirectedLoop, LeavesNoHandlesAndNoMemoryBehind) {
    SilentDevices();
    agents->AnswerByItself("neta", 161, SnmpText("Model"));
    const auto get = [this](int times) {
        char text[VN_INFORMATION_SIZE];
        while (times-- > 0) {
            ASSERT_EQ(5, module.GetSnmpInformation("10.77.1.11", text, nullptr, nullptr));
        }
    };
    get(kWarmUp);
    const size_t handles = OpenHandles(), bytes = PrivateBytes();
    get(kRequests);
    EXPECT_EQ(handles, OpenHandles());
    EXPECT_LE(PrivateBytes(), bytes + 256 * 1024) << "a quarter of a kilobyte per request";
}

}  // namespace
}  // namespace vndiscover
