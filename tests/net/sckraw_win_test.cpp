// The socket's operations that no export uses; loopback alone.
#include "net/sckraw.h"

#include <gtest/gtest.h>

namespace vndiscover {
namespace {

constexpr int kPort = 47999;

TEST(Sckraw, SendsAndReceivesOnItsOwnSocket) {
    SCKRAW device, host;
    device.sock = device.CreateSocket(SOCK_DGRAM, IPPROTO_UDP, AF_INET, 1000, "");
    EXPECT_EQ(0, device.BindV4(device.sock.Get(), "localhost", kPort));
    EXPECT_EQ(2, host.SendTo(AF_INET, "127.0.0.1", kPort, "hi", 2, 1000));
    char buffer[8] = {};
    char from[kSenderTextSize] = {};
    EXPECT_EQ(2, device.RecvFrom(buffer, sizeof buffer, from, 20999));
    EXPECT_STREQ("hi", buffer);
    EXPECT_STREQ("127.0.0.1", from);
    EXPECT_EQ(0, device.RecvFrom(buffer, sizeof buffer, nullptr, 999)) << "no wait at all";
    EXPECT_EQ(SCKRAW_ERROR_TIMEOUT, device.lastError);
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
