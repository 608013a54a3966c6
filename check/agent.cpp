#include "check/agent.h"

#include <utility>

namespace check {
namespace {

constexpr int kPollMs = 50;
constexpr size_t kMaxDatagram = 65536;

bool IsLoopback(const sockaddr_in& address) {
    return (ntohl(address.sin_addr.s_addr) >> 24) == 127;
}

int LastErrorUnless(bool done) { return done ? 0 : WSAGetLastError(); }

}  // namespace

sockaddr_in LoopbackAddress(const char* address, uint16_t port) {
    sockaddr_in in = {};
    in.sin_family = AF_INET;
    in.sin_port = htons(port);
    inet_pton(AF_INET, address, &in.sin_addr);
    return in;
}

int UdpSocket::Bind(const char* address, uint16_t port) {
    const sockaddr_in in = LoopbackAddress(address, port);
    return LastErrorUnless(bind(socket_, reinterpret_cast<const sockaddr*>(&in), sizeof in) == 0);
}

int UdpSocket::Set(int level, int option, const void* value, int size) {
    const char* bytes = static_cast<const char*>(value);
    return LastErrorUnless(setsockopt(socket_, level, option, bytes, size) == 0);
}

uint16_t UdpSocket::Port() const {
    sockaddr_storage bound = {};
    int size = sizeof bound;
    getsockname(socket_, reinterpret_cast<sockaddr*>(&bound), &size);
    return ntohs(
        reinterpret_cast<const sockaddr_in*>(&bound)->sin_port);  // at the same offset in both
}

bool UdpSocket::IsReadable(int waitMs) const {
    fd_set set;
    FD_ZERO(&set);
    FD_SET(socket_, &set);
    timeval wait = {waitMs / 1000, waitMs % 1000 * 1000};
    return select(0, &set, nullptr, nullptr, &wait) == 1;
}

Agent::Agent(const char* address, uint16_t port, Answers answer)
    : socket_(AF_INET), answer_(std::move(answer)), error_(socket_.Bind(address, port)) {
    if (error_ == 0) thread_ = std::thread([this] { Serve(); });
}

Agent::Agent(const char* group, uint16_t port, const char* interfaceAddress, Answers answer)
    : socket_(AF_INET), answer_(std::move(answer)) {
    // The system's own responder uses the port too.
    const BOOL shares = TRUE;
    ip_mreq membership = {};
    inet_pton(AF_INET, group, &membership.imr_multiaddr);
    inet_pton(AF_INET, interfaceAddress, &membership.imr_interface);
    error_ = socket_.Set(SOL_SOCKET, SO_REUSEADDR, &shares, sizeof shares);
    if (error_ == 0) error_ = socket_.Bind("0.0.0.0", port);
    if (error_ == 0)
        error_ = socket_.Set(IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership);
    if (error_ == 0) thread_ = std::thread([this] { Serve(); });
}

Agent::~Agent() {
    ends_ = true;
    if (thread_.joinable()) thread_.join();
}

void Agent::Serve() {
    Bytes request(kMaxDatagram);
    while (!ends_) {
        if (!socket_.IsReadable(kPollMs)) continue;
        sockaddr_in sender = {};
        int size = sizeof sender;
        auto* to = reinterpret_cast<sockaddr*>(&sender);
        const int received = recvfrom(socket_.Get(), reinterpret_cast<char*>(request.data()),
                                      int(request.size()), 0, to, &size);
        if (received <= 0 || !IsLoopback(sender)) continue;
        for (const Bytes& answer : answer_(Bytes(request.begin(), request.begin() + received))) {
            sendto(socket_.Get(), reinterpret_cast<const char*>(answer.data()), int(answer.size()),
                   0, to, size);
        }
    }
}

}  // namespace check
