// A network inside the test process: it receives what the module sends, and devices that each test
// describes answer on a virtual clock. Nothing waits, and nothing is sent.
//
//     ScriptedNetwork network(module);
//     network.Devices([](const Request& request) { return Answers{{SnmpText("A")}}; });
//     module.DiscoverDevices(...);
//     network.Requests();  // what was sent, to whom and from where
//
// It replaces the module's sendto, select, recvfrom, ioctlsocket, closesocket, GetTickCount and
// Sleep. Sockets, their options and binds are real, and so are the adapters: the program needs the
// two adapters of scripts/lab/test-net.sh.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "exports/support/module.h"
#include "helpers/snmp_datagrams.h"

namespace vndiscover {

// A datagram of the module.
struct Request {
    std::string net;     // "neta", "netb", "host": by the socket's local address
    std::string local;   // the receiver's address, or that of a broadcast or multicast
    int port;            // and the port there
    std::string sender;  // its local address, without zone suffix
    Bytes data;
    SOCKET socket;  // open while the devices reply

    std::string Way() const {
        return net + ": " + sender + " > " + local + ':' + std::to_string(port);
    }
};

// A device's answer. One longer than the receiver's buffer arrives as WSAEMSGSIZE, one without data
// as an empty datagram.
struct Answer {
    Bytes data;
    std::string from = {};  // any address; empty: where the request went, or the network's own
    uint32_t delayMs = 0;   // answers with the same time arrive in the given order
};
using Answers = std::vector<Answer>;
using Reply = std::function<Answers(const Request&)>;

// The same answer several times.
inline Answers Repeated(size_t count, const Answer& answer, uint32_t gapMs = 0) {
    Answers answers(count, answer);
    for (size_t i = 0; i < count; ++i) answers[i].delayMs += static_cast<uint32_t>(i) * gapMs;
    return answers;
}

// One object at a time. All of it runs on the thread that calls the module.
class ScriptedNetwork {
  public:
    explicit ScriptedNetwork(const Module& module) {
        self_ = this;
        Attach(module);
    }
    ScriptedNetwork& operator=(ScriptedNetwork&&) = delete;  // nor copied

    // For unloading the module, which needs its original functions.
    void Detach() { patches_.clear(); }
    void Attach(const Module& module) {
        const auto patch = [&](const char* name, auto function) {
            patches_.emplace_back(module.Handle(), name, function);
        };
        patch("sendto", [](SOCKET handle, const char* data, int length, int, const sockaddr* to,
                           int) { return self_->Send(handle, Bytes(data, data + length), to); });
        patch("select", [](int, fd_set* readable, fd_set*, fd_set*, const timeval* limit) {
            return self_->Wait(readable, limit->tv_sec * 1000 + limit->tv_usec / 1000);
        });
        patch("recvfrom",
              [](SOCKET handle, char* data, int size, int, sockaddr* from, int* length) {
                  return self_->Receive(handle, data, size, from, length);
              });
        patch("ioctlsocket", [](SOCKET handle, long command, u_long* argument) {
            Socket* const socket = self_->Find(handle);
            if (socket && command == static_cast<long>(FIONBIO)) {
                socket->isNonBlocking = *argument != 0;
            }
            return ioctlsocket(handle, command, argument);
        });
        patch("closesocket", [](SOCKET handle) {
            self_->sockets_.erase(handle);
            return closesocket(handle);
        });
        patch("GetTickCount", [] { return kFirstTick + static_cast<DWORD>(self_->nowMs_); });
        patch("Sleep", [](DWORD milliseconds) { self_->nowMs_ += milliseconds; });
    }

    // From now on there are these devices; if null, silent ones. Clears the recorded requests and
    // waits, and what has not been received yet.
    void Devices(Reply reply) {
        reply_ = std::move(reply);
        requests_.clear();
        silentWaits_.clear();
        for (auto& entry : sockets_) entry.second.queue.clear();
    }
    const std::vector<Request>& Requests() const { return requests_; }
    // The waits, in milliseconds, that timed out.
    const std::vector<int>& SilentWaits() const { return silentWaits_; }
    // Calls of recvfrom, and the datagrams that they took.
    int Receives() const { return receives_; }
    int Datagrams() const { return datagrams_; }
    // The module's open sockets.
    size_t OpenSockets() const { return sockets_.size(); }
    // The module's clock, in milliseconds since its start. It advances in waits and in Sleep, and
    // with each of many failing calls in a row, so that no loop is endless. The result of
    // GetTickCount wraps half a minute after the start.
    uint64_t NowMs() const { return nowMs_; }

    // Of the level SOL_SOCKET; -1 if it is not a socket.
    static int Option(SOCKET handle, int option) {
        int value = 0, size = sizeof value;
        auto* const bytes = reinterpret_cast<char*>(&value);
        return getsockopt(handle, SOL_SOCKET, option, bytes, &size) ? -1 : value;
    }

    // WinSock errors to report instead: each function gets the number of the call, from 1, and
    // returns an error or 0. Queued datagrams stay queued.
    std::function<int(int call)> sendError, receiveError;
    // Called when the module receives a datagram, with the number of datagrams so far, from 1.
    std::function<void(int datagrams)> onDatagram;

  private:
    struct Adapter {
        const char *net, *ipv4, *ipv6;        // of the host
        const char *deviceIPv4, *deviceIPv6;  // of the device that answers broadcasts, multicasts
    };
    struct Datagram {
        Bytes data;
        std::string from;
    };
    using Queue = std::multimap<uint64_t, Datagram>;  // by arrival
    struct Socket {
        Queue queue;
        std::string bound;  // local address
        bool isNonBlocking = false;
    };
    static constexpr uint32_t kFirstTick = 0u - 30000;  // the first result of GetTickCount
    static constexpr ULONG kZone = 12;                  // of a link-local sender
    static constexpr int kFailuresOfAMoment = 10;
    static constexpr Adapter kAdapters[] = {
        {"neta", "10.77.1.1", "fe80::1:1", "10.77.1.2", "fe80::1:2"},
        {"netb", "10.77.2.1", "fe80::2:1", "10.77.2.2", "fe80::2:2"},
        {"host", "127.0.0.1", "::1", "127.0.0.1", "::1"}};

    static size_t OffsetIn(const sockaddr* address) {
        return address->sa_family == AF_INET ? offsetof(sockaddr_in, sin_addr)
                                             : offsetof(sockaddr_in6, sin6_addr);
    }
    static std::string TextOf(const sockaddr* address) {
        char text[64] = {};
        const auto* bytes = reinterpret_cast<const char*>(address) + OffsetIn(address);
        inet_ntop(address->sa_family, bytes, text, sizeof text);
        return text;
    }
    static int WriteAddress(const std::string& text, sockaddr* address) {
        const bool isIPv6 = text.find(':') != std::string::npos;
        const size_t size = isIPv6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
        std::memset(address, 0, size);
        address->sa_family = isIPv6 ? AF_INET6 : AF_INET;
        inet_pton(address->sa_family, text.c_str(),
                  reinterpret_cast<char*>(address) + OffsetIn(address));
        if (isIPv6) reinterpret_cast<sockaddr_in6*>(address)->sin6_scope_id = kZone;
        return static_cast<int>(size);
    }
    // The adapter to which a socket is bound; otherwise the receiver's, or the first, which has the
    // default route. All networks have the same IPv6 prefix.
    static const Adapter& WayOf(const std::string& bound, const std::string& to) {
        for (const Adapter& adapter : kAdapters) {
            if (bound == adapter.ipv4 || bound == adapter.ipv6) return adapter;
        }
        return kAdapters[to.rfind("127.", 0) == 0 ? 2 : to.rfind("10.77.2.", 0) == 0 ? 1 : 0];
    }

    // Null if it is not a socket. Looked at once, since in Wine this calls another process.
    Socket* Find(SOCKET handle) {
        const auto known = sockets_.find(handle);
        if (known != sockets_.end()) return &known->second;
        if (Option(handle, SO_TYPE) != SOCK_DGRAM) return nullptr;
        sockaddr_storage local = {};
        int length = sizeof local;
        getsockname(handle, reinterpret_cast<sockaddr*>(&local), &length);
        sockets_[handle].bound = TextOf(reinterpret_cast<sockaddr*>(&local));
        return &sockets_[handle];
    }
    int Send(SOCKET handle, Bytes data, const sockaddr* to) {
        const int length = static_cast<int>(data.size());
        if (const int error = sendError ? sendError(++sends_) : 0) return Fail(error);
        Socket* const sending = Find(handle);
        if (!sending) return Fail(WSAENOTSOCK);
        const bool isIPv4 = to->sa_family == AF_INET;
        const std::string receiver = TextOf(to);
        const bool isBroadcast = receiver == "255.255.255.255";
        if (isBroadcast && Option(handle, SO_BROADCAST) != 1) {
            return Fail(WSAEACCES);
        }
        const Adapter& way = WayOf(sending->bound, receiver);
        const int port = ntohs(reinterpret_cast<const sockaddr_in*>(to)->sin_port);  // and IPv6
        requests_.push_back(
            {way.net, receiver, port, isIPv4 ? way.ipv4 : way.ipv6, std::move(data), handle});
        const bool isToEverybody =
            isBroadcast || receiver.rfind("239.", 0) == 0 || receiver.rfind("ff02:", 0) == 0;
        const std::string device = isIPv4 ? way.deviceIPv4 : way.deviceIPv6;
        if (!reply_) return length;
        for (Answer& answer : reply_(Request(requests_.back()))) {
            if (answer.from.empty()) answer.from = isToEverybody ? device : receiver;
            sending->queue.emplace(nowMs_ + answer.delayMs,
                                   Datagram{std::move(answer.data), std::move(answer.from)});
        }
        return length;
    }
    int Wait(fd_set* readable, int waitMs) {
        const Socket* const waiting = Find(readable->fd_array[0]);
        if (!waiting) return Fail(WSAENOTSOCK);
        if (WaitFor(waiting->queue, nowMs_ + static_cast<uint64_t>(waitMs))) return 1;
        silentWaits_.push_back(waitMs);
        failuresInARow_ = 0;
        FD_ZERO(readable);
        return 0;
    }
    // Advances the clock until a datagram has arrived, but no further than this.
    bool WaitFor(const Queue& queue, uint64_t untilMs) {
        const bool arrives = !queue.empty() && queue.begin()->first <= untilMs;
        nowMs_ = std::max(nowMs_, arrives ? queue.begin()->first : untilMs);
        return arrives;
    }
    int Receive(SOCKET handle, char* buffer, int size, sockaddr* from, int* fromLength) {
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
    int Fail(int error) {
        if (++failuresInARow_ > kFailuresOfAMoment) ++nowMs_;
        WSASetLastError(error);
        return SOCKET_ERROR;
    }

    static inline ScriptedNetwork* self_;
    std::list<ImportPatch> patches_;
    Reply reply_;
    std::vector<Request> requests_;
    std::vector<int> silentWaits_;
    std::map<SOCKET, Socket> sockets_;
    uint64_t nowMs_ = 0;
    int sends_ = 0, receives_ = 0, datagrams_ = 0, failuresInARow_ = 0;
};

}  // namespace vndiscover
