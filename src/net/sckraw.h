// The module's UDP socket.
#pragma once

#include <cstdint>

#include "support/owned.h"
#include "support/win.h"

namespace vndiscover {

constexpr int32_t SCKRAW_ERROR_TIMEOUT = 1;  // lastError: a wait timed out
constexpr int kMaxDatagram = 2048;           // bytes of a receive buffer
constexpr int kSenderTextSize = 260;         // bytes that a fromAddress buffer must hold

struct SocketTraits {
    using Value = SOCKET;
    static Value Empty() noexcept { return INVALID_SOCKET; }
    static void Close(Value socket) noexcept {
        const int error = WSAGetLastError();  // callers read it after a close
        closesocket(socket);
        WSASetLastError(error);
    }
};
using OwnedSocket = Owned<SocketTraits>;
using OwnedAddressList = Owned<ClosedBy<addrinfo*, freeaddrinfo>>;

// Holds one WinSock start-up reference. For one thread at a time. Text is narrow, time-outs are in
// milliseconds. Nothing throws.
class SCKRAW {
  public:
    SCKRAW();
    ~SCKRAW();

    // Takes one WinSock reference for the module, once, and keeps it. Managers are destroyed within
    // DllMain, where releasing the process's last reference could deadlock: that unloads libraries.
    static void KeepStarted();

    // Returns a new socket, not stored in `sock`. It is empty only if creation failed: if an option
    // cannot be set, the socket is returned as it then is, and a failed bind is only logged.
    // bindAddress is the local address as text; null or "" means any.
    OwnedSocket CreateSocket(int type, int protocol, int addressFamily, int timeoutMs,
                             const char* bindAddress);

    // Binds to an IPv4 address or host name; port 0 means any. Always 0; a failure is only logged.
    int BindV4(SOCKET handle, const char* addressText, int port);

    // IPv4 address in network order, or INADDR_NONE.
    static uint32_t ResolveV4(const char* text);
    static bool IsDottedQuad(const char* text);

    // SendToSocket on `sock`, which is created if it is not open; a failed send closes it. Nothing
    // in the module calls it.
    int SendTo(int addressFamily, const char* host, int port, const void* data, int length,
               int timeoutMs);

    // Returns the bytes sent; -1 if the send failed, with the handle closed and the reason in
    // WSAGetLastError; the resolver's positive code if host does not resolve in the object's
    // family.
    int SendToSocket(OwnedSocket& handle, const char* host, int port, const void* data, int length);

    // RecvFromSocket on `sock`. Nothing in the module calls it.
    int RecvFrom(void* buffer, int size, char* fromAddress, int timeoutMs) {
        return RecvFromSocket(sock.Get(), buffer, size, fromAddress, timeoutMs);
    }

    // Waits timeoutMs / 1000 whole seconds for one datagram. Returns the bytes received; 0 on
    // time-out or failure, and lastError tells which (an empty datagram leaves it alone).
    // fromAddress receives the sender's numeric address; it is null or has kSenderTextSize bytes.
    // takesQueued: waits only if nothing is queued, since a wait costs more than the receive
    // itself. Only for a socket for which StopBlocking returned true.
    int RecvFromSocket(SOCKET handle, void* buffer, int size, char* fromAddress, int timeoutMs,
                       bool takesQueued = false);

    // For sockets that collect many answers: enlarges the receive buffer so that a burst of 8,192
    // fits. A failure is not logged, since answers are then lost only in bursts.
    static void RaiseReceiveBuffer(SOCKET handle);

    // Makes the socket non-blocking. False on failure.
    static bool StopBlocking(SOCKET handle);

    // 1 if the system's IPv6 stack has a wildcard address, otherwise 0.
    int HasIPv6Address();

    OwnedSocket sock;
    int32_t family = AF_INET;
    int32_t lastError = 0;
};

}  // namespace vndiscover
