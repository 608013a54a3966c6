// The one UDP datagram socket abstraction of the module.
#pragma once

#include <cstdint>

#include "net/owned_socket.h"

namespace vndiscover {

constexpr int32_t SCKRAW_ERROR_TIMEOUT = 1;  // lastError: a wait passed without a datagram
constexpr int kMaxDatagram = 2048;           // bytes of a receive buffer
constexpr int kSenderTextSize = 260;         // bytes that a fromAddress buffer must hold

// Holds one WinSock start-up reference. One thread at a time. Texts are narrow, time-outs
// milliseconds. Nothing throws; each result says what is left to the caller.
class SCKRAW {
  public:
    SCKRAW();
    ~SCKRAW();
    SCKRAW(const SCKRAW&) = delete;
    SCKRAW& operator=(const SCKRAW&) = delete;

    // Takes one WinSock reference for the module, once, and keeps it. Managers end within DllMain,
    // where giving back the process's last one could deadlock: that unloads libraries.
    static void KeepStarted();

    // A new socket, owned by the caller and not stored in `sock`. Empty only when creation failed:
    // with an option that could not be set it is returned as it then is, and a failed bind shows in
    // the log. bindAddress: local address text, null or "" for none.
    OwnedSocket CreateSocket(int type, int protocol, int addressFamily, int timeoutMs,
                             const char* bindAddress);

    // Binds to an IPv4 address or host name; port 0 means any. Always 0: a failure is only logged.
    int BindV4(SOCKET handle, const char* addressText, int port);

    // IPv4 address in network order, or INADDR_NONE.
    static uint32_t ResolveV4(const char* text);
    static bool IsDottedQuad(const char* text);

    // Sends on `sock`, created first if none is open; after a failed send that is a new one. As
    // SendToSocket. Nothing in the module calls it.
    int SendTo(int addressFamily, const char* host, int port, const void* data, int length,
               int timeoutMs);

    // Bytes sent; -1 when the send failed (the handle is then closed and WSAGetLastError tells
    // why); the resolver's positive code when host does not resolve in the object's family.
    int SendToSocket(OwnedSocket& handle, const char* host, int port, const void* data, int length);

    // RecvFromSocket on `sock`. Nothing in the module calls it.
    int RecvFrom(void* buffer, int size, char* fromAddress, int timeoutMs);

    // Waits timeoutMs / 1000 whole seconds for one datagram. Bytes received; 0 on time-out or
    // failure, lastError tells which (a datagram of zero bytes leaves it alone). fromAddress: null
    // or at least kSenderTextSize bytes, receives the sender's numeric address.
    int RecvFromSocket(SOCKET handle, void* buffer, int size, char* fromAddress, int timeoutMs);

    // For sockets that collect many answers. Raises the receive buffer so that a burst of 8,192
    // fits; best effort and unlogged, for where the system refuses, answers are lost only in
    // bursts.
    static void RaiseReceiveBuffer(SOCKET handle);

    // From then on TakeQueued may be used. False: it may not.
    static bool StopBlocking(SOCKET handle);

    // Takes a datagram that is already queued without the wait, which costs more than the receive
    // itself. False: nothing is queued, or the socket cannot receive yet: wait. Else `received` is
    // RecvFromSocket's result, with the same log line and lastError on failure.
    bool TakeQueued(SOCKET handle, void* buffer, int size, char* fromAddress, int& received);

    // 1 when the system's IPv6 stack offers a wildcard address, else 0.
    int HasIPv6Address();

    OwnedSocket sock;
    int32_t family = AF_INET;
    int32_t lastError = 0;

  private:
    int FailedReceive();
};

}  // namespace vndiscover
