// The socket's operations that no export uses, and its limits; loopback alone.
#include "net/sckraw.h"

#include <gtest/gtest.h>

#include "helpers/import_slot.h"

extern "C" decltype(&::select) __imp_select;

namespace vndiscover {
namespace {

constexpr int kPort = 47999;

const auto g_select = __imp_select;
timeval g_wait;

int WSAAPI Select(int count, fd_set* readable, fd_set* writable, fd_set* failed,
                  timeval* wait) {
    g_wait = *wait;
    return g_select(count, readable, writable, failed, wait);
}

TEST(Sckraw, SendsAndReceivesOnItsOwnSocket) {
    const ImportSlot slot(__imp_select, &Select);
    SCKRAW device;
    device.sock = device.CreateSocket(SOCK_DGRAM, IPPROTO_UDP, AF_INET, 1000, "");
    EXPECT_EQ(0, device.BindV4(device.sock.Get(), "localhost", kPort));
    SCKRAW host;
    EXPECT_EQ(2, host.SendTo(AF_INET, "127.0.0.1", kPort, "hi", 2, 1000));
    char buffer[8] = {};
    char from[kSenderTextSize] = {};
    EXPECT_EQ(2, device.RecvFrom(buffer, sizeof buffer, from, 20999));
    EXPECT_EQ(20, g_wait.tv_sec);
    EXPECT_STREQ("hi", buffer);
    EXPECT_STREQ("127.0.0.1", from);
    // An empty datagram is told from silence by lastError, which it leaves alone.
    device.lastError = 77;
    EXPECT_EQ(0, host.SendTo(AF_INET, "127.0.0.1", kPort, "", 0, 1000));
    EXPECT_EQ(0, device.RecvFrom(buffer, sizeof buffer, nullptr, 20999));
    EXPECT_EQ(77, device.lastError);
    EXPECT_EQ(0, device.RecvFrom(buffer, sizeof buffer, nullptr, 999));
    EXPECT_EQ(SCKRAW_ERROR_TIMEOUT, device.lastError);
    EXPECT_EQ(0, g_wait.tv_sec + g_wait.tv_usec) << "less than a second is no wait at all";
}

TEST(Sckraw, TakesTheResolversCodeForACountOfBytes) {
    SCKRAW socket;
    const int code = socket.SendTo(AF_INET, "no.such.name.invalid", kPort, "hi", 2, 1000);
    EXPECT_GT(code, 2);
    EXPECT_EQ(code, WSAGetLastError());
    EXPECT_TRUE(socket.sock) << "only a failed send closes it";
    EXPECT_EQ(INADDR_NONE, SCKRAW::ResolveV4("no.such.name.invalid"));
    EXPECT_EQ(htonl(INADDR_LOOPBACK), SCKRAW::ResolveV4("localhost"));
    for (const char* text : {"127.0.0.1", "1.2.3.4.", "....", "1", ""}) {
        EXPECT_FALSE(SCKRAW::IsDottedQuad(text)) << "every text goes to the resolver first";
    }
}

}  // namespace
}  // namespace vndiscover
