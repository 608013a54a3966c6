#include "exports/support/scripted_network.h"

#include <algorithm>
#include <cstring>

namespace vndiscover {
namespace {

constexpr uint32_t kFirstTick = 0u - 30000;  // the first result of GetTickCount
constexpr ULONG kZone = 12;                  // of a link-local sender
constexpr int kFailuresOfAMoment = 10;

ScriptedNetwork* g_network;

struct Adapter {
    const char *net, *ipv4, *ipv6;        // of the host
    const char *deviceIPv4, *deviceIPv6;  // of the device that answers broadcasts and multicasts
};
constexpr Adapter kAdapters[] = {{"neta", "10.77.1.1", "fe80::1:1", "10.77.1.2", "fe80::1:2"},
                                 {"netb", "10.77.2.1", "fe80::2:1", "10.77.2.2", "fe80::2:2"},
                                 {"host", "127.0.0.1", "::1", "127.0.0.1", "::1"}};

std::string TextOf(const sockaddr* address) {
    char text[64] = {};
    if (address->sa_family == AF_INET) {
        inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(address)->sin_addr, text, 64);
    } else {
        inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr, text, 64);
    }
    return text;
}

int WriteAddress(const std::string& text, sockaddr* address) {
    if (text.find(':') == std::string::npos) {
        sockaddr_in ipv4 = {};
        ipv4.sin_family = AF_INET;
        inet_pton(AF_INET, text.c_str(), &ipv4.sin_addr);
        std::memcpy(address, &ipv4, sizeof ipv4);
        return sizeof ipv4;
    }
    sockaddr_in6 ipv6 = {};
    ipv6.sin6_family = AF_INET6;
    inet_pton(AF_INET6, text.c_str(), &ipv6.sin6_addr);
    ipv6.sin6_scope_id = kZone;
    std::memcpy(address, &ipv6, sizeof ipv6);
    return sizeof ipv6;
}

int Option(SOCKET handle, int option) {
    int value = 0;
    int size = sizeof value;
    const int failed =
        getsockopt(handle, SOL_SOCKET, option, reinterpret_cast<char*>(&value), &size);
    return failed ? -1 : value;
}

// The adapter to which a socket is bound; otherwise the receiver's, or the first, which has the
// default route. All networks have the same IPv6 prefix.
const Adapter& WayOf(const std::string& bound, const std::string& to) {
    for (const Adapter& adapter : kAdapters) {
        if (bound == adapter.ipv4 || bound == adapter.ipv6) return adapter;
    }
    if (to.rfind("127.", 0) == 0) return kAdapters[2];
    return kAdapters[to.rfind("10.77.2.", 0) == 0 ? 1 : 0];
}

}  // namespace

std::string Request::Way() const {
    return net + ": " + sender + " > " + local + ':' + std::to_string(port);
}
std::ostream& operator<<(std::ostream& out, const Request& request) {
    return out << request.Way() << ' ' << ToHex(request.data);
}

Answers Repeated(size_t count, const Answer& answer, uint32_t gapMs) {
    Answers answers(count, answer);
    for (size_t i = 0; i < count; ++i) answers[i].delayMs += static_cast<uint32_t>(i) * gapMs;
    return answers;
}

ScriptedNetwork::ScriptedNetwork(const Module& module) {
    g_network = this;
    Attach(module);
}

ScriptedNetwork::~ScriptedNetwork() {
    Detach();
    g_network = nullptr;
}

void ScriptedNetwork::Attach(const Module& module) {
    const auto patch = [&](const char* name, auto function) {
        patches_.emplace_back(module.Handle(), name, function);
    };
    patch("sendto", [](SOCKET handle, const char* data, int length, int, const sockaddr* to, int) {
        return g_network->Send(handle, Bytes(data, data + length), to);
    });
    patch("select", [](int, fd_set* readable, fd_set*, fd_set*, const timeval* limit) {
        return g_network->Wait(readable, limit->tv_sec * 1000 + limit->tv_usec / 1000);
    });
    patch("recvfrom", [](SOCKET handle, char* data, int size, int, sockaddr* from, int* length) {
        return g_network->Receive(handle, data, size, from, length);
    });
    patch("ioctlsocket", [](SOCKET handle, long command, u_long* argument) {
        Socket* const socket = g_network->Find(handle);
        if (socket && command == static_cast<long>(FIONBIO)) socket->isNonBlocking = *argument != 0;
        return socket && !socket->isReal ? 0 : ioctlsocket(handle, command, argument);
    });
    patch("closesocket", [](SOCKET handle) {
        const Socket* const socket = g_network->Find(handle);
        const bool isReal = !socket || socket->isReal;
        g_network->sockets_.erase(handle);
        return isReal ? closesocket(handle) : 0;
    });
    patch("GetTickCount", [] { return kFirstTick + static_cast<DWORD>(g_network->nowMs_); });
    patch("Sleep", [](DWORD milliseconds) { g_network->nowMs_ += milliseconds; });
}

void ScriptedNetwork::MakeSocketsUp(const Module& module) {
    patches_.emplace_back(module.Handle(), "WSASocketA",
                          [](int, int, int, WSAPROTOCOL_INFOA*, GROUP, DWORD) {
                              g_network->sockets_[g_network->lastMadeUp_ += 4].isReal = false;
                              return g_network->lastMadeUp_;
                          });
    patches_.emplace_back(module.Handle(), "setsockopt",
                          [](SOCKET, int, int, const char*, int) { return 0; });
    patches_.emplace_back(module.Handle(), "bind", [](SOCKET handle, const sockaddr* address, int) {
        g_network->sockets_[handle].bound = TextOf(address);
        return 0;
    });
}

void ScriptedNetwork::Devices(Reply reply) {
    reply_ = std::move(reply);
    requests_.clear();
    silentWaits_.clear();
    for (auto& entry : sockets_) entry.second.queue.clear();
}

// Called once for each socket, since in Wine this calls another process.
ScriptedNetwork::Socket* ScriptedNetwork::Find(SOCKET handle) {
    const auto known = sockets_.find(handle);
    if (known != sockets_.end()) return &known->second;
    if (Option(handle, SO_TYPE) != SOCK_DGRAM) return nullptr;
    sockaddr_storage local = {};
    int length = sizeof local;
    getsockname(handle, reinterpret_cast<sockaddr*>(&local), &length);
    Socket& created = sockets_[handle];
    created.bound = TextOf(reinterpret_cast<sockaddr*>(&local));
    return &created;
}

int ScriptedNetwork::Send(SOCKET handle, Bytes data, const sockaddr* to) {
    const int length = static_cast<int>(data.size());
    if (const int error = sendError ? sendError(++sends_) : 0) return Fail(error);
    Socket* const sending = Find(handle);
    if (!sending) return Fail(WSAENOTSOCK);
    const bool isIPv4 = to->sa_family == AF_INET;
    const std::string receiver = TextOf(to);
    const bool isBroadcast = receiver == "255.255.255.255";
    if (isBroadcast && sending->isReal && Option(handle, SO_BROADCAST) != 1) {
        return Fail(WSAEACCES);
    }
    const Adapter& way = WayOf(sending->bound, receiver);
    const Request request = {way.net,
                             receiver,
                             ntohs(reinterpret_cast<const sockaddr_in*>(to)->sin_port),  // and IPv6
                             isIPv4 ? way.ipv4 : way.ipv6,
                             std::move(data),
                             handle};
    requests_.push_back(request);
    const bool isToEverybody =
        isBroadcast || receiver.rfind("239.", 0) == 0 || receiver.rfind("ff02:", 0) == 0;
    const std::string device = isIPv4 ? way.deviceIPv4 : way.deviceIPv6;
    if (!reply_) return length;
    for (Answer& answer : reply_(request)) {
        if (answer.from.empty()) answer.from = isToEverybody ? device : receiver;
        sending->queue.emplace(nowMs_ + answer.delayMs,
                               Datagram{std::move(answer.data), std::move(answer.from)});
    }
    return length;
}

int ScriptedNetwork::Wait(fd_set* readable, int waitMs) {
    const Socket* const waiting = Find(readable->fd_array[0]);
    if (!waiting) return Fail(WSAENOTSOCK);
    if (WaitFor(waiting->queue, nowMs_ + static_cast<uint64_t>(waitMs))) return 1;
    silentWaits_.push_back(waitMs);
    failuresInARow_ = 0;
    FD_ZERO(readable);
    return 0;
}

bool ScriptedNetwork::WaitFor(const Queue& queue, uint64_t untilMs) {
    const bool arrives = !queue.empty() && queue.begin()->first <= untilMs;
    nowMs_ = std::max(nowMs_, arrives ? queue.begin()->first : untilMs);
    return arrives;
}

int ScriptedNetwork::Receive(SOCKET handle, char* buffer, int size, sockaddr* from,
                             int* fromLength) {
    ++receives_;
    if (const int error = receiveError ? receiveError(receives_) : 0) return Fail(error);
    Socket* const receiving = Find(handle);
    if (!receiving) return Fail(WSAENOTSOCK);
    Queue& queue = receiving->queue;
    if (!WaitFor(queue, nowMs_)) {
        if (receiving->isNonBlocking) return Fail(WSAEWOULDBLOCK);
        const auto timeoutMs = static_cast<uint64_t>(Option(handle, SO_RCVTIMEO));
        if (!WaitFor(queue, nowMs_ + timeoutMs)) return Fail(WSAETIMEDOUT);
    }
    const Datagram datagram = std::move(queue.begin()->second);
    queue.erase(queue.begin());
    failuresInARow_ = 0;
    const size_t taken = std::min(datagram.data.size(), static_cast<size_t>(size));
    std::copy_n(datagram.data.begin(), taken, buffer);
    if (from) *fromLength = WriteAddress(datagram.from, from);
    ++datagrams_;
    if (onDatagram) onDatagram(datagrams_);
    return taken < datagram.data.size() ? Fail(WSAEMSGSIZE) : static_cast<int>(taken);
}

int ScriptedNetwork::Fail(int error) {
    if (++failuresInARow_ > kFailuresOfAMoment) ++nowMs_;
    WSASetLastError(error);
    return SOCKET_ERROR;
}

}  // namespace vndiscover
