// A responder on a loopback address, with its own thread.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

#include "check/ber.h"
#include "check/windows_headers.h"

namespace check {

// A datagram socket that closes itself.
class UdpSocket {
  public:
    explicit UdpSocket(int family) : socket_(WSASocketA(family, SOCK_DGRAM, 0, nullptr, 0, 0)) {}
    ~UdpSocket() { closesocket(socket_); }
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;
    SOCKET Get() const { return socket_; }

    // Both return 0 or WinSock's error.
    int Bind(const char* address, uint16_t port);
    int Set(int level, int option, const void* value, int size);
    uint16_t Port() const;
    bool IsReadable(int waitMs) const;

  private:
    SOCKET socket_;
};

sockaddr_in LoopbackAddress(const char* address, uint16_t port);

// Until it is destroyed, calls `answer` with every datagram that comes from a loopback address and
// sends back the result.
class Agent {
  public:
    using Answers = std::function<std::vector<Bytes>(const Bytes& request)>;

    Agent(const char* address, uint16_t port, Answers answer);
    // A member of a multicast group, on the loopback interface.
    Agent(const char* group, uint16_t port, const char* interfaceAddress, Answers answer);
    ~Agent();

    int Error() const { return error_; }  // of the bind or the join; 0: it is listening

  private:
    void Serve();

    UdpSocket socket_;
    Answers answer_;
    int error_ = 0;
    std::atomic<bool> ends_{false};
    std::thread thread_;
};

}  // namespace check
