// A network inside the test process: it takes what the module sends, and devices that each test
// describes answer on a clock of its own. Nothing waits, nothing is late, nothing leaves.
//
//     ScriptedNetwork network(module);
//     network.Devices([](const Request& request) { return Answers{{SnmpText("A")}}; });
//     module.DiscoverDevices(...);
//     network.Requests();  // who was asked for what, from where
//
// It puts itself in front of the module's sendto, select, recvfrom, ioctlsocket, closesocket,
// GetTickCount and Sleep. Sockets, their options and binds stay real, as do the adapters: the
// program needs the two adapters of scripts/lab/test-net.sh.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "exports/support/module.h"
#include "helpers/bytes.h"

namespace vndiscover {

// A datagram of the module.
struct Request {
    std::string net;     // "neta", "netb", "host": by the address that the socket is bound to
    std::string local;   // where it was sent: the address of a device, or of everybody
    int port;            // and the port there
    std::string sender;  // the address that it leaves from, without zone suffix
    Bytes data;
    SOCKET socket;  // open while the devices reply
};
std::ostream& operator<<(std::ostream& out, const Request& request);

// What a device sends back. Whatever is longer than the receiver's buffer arrives as WSAEMSGSIZE,
// no data as an empty datagram.
struct Answer {
    Bytes data;
    std::string from = {};  // any address; empty: where the request went, or the network's own
    uint32_t delayMs = 0;   // answers of one moment arrive in the order in which they were given
};
using Answers = std::vector<Answer>;
using Reply = std::function<Answers(const Request&)>;

// The same answer so many times.
Answers Repeated(size_t count, const Answer& answer, uint32_t gapMs = 0);

// One at a time. Everything here runs on the module's calling thread.
class ScriptedNetwork {
  public:
    explicit ScriptedNetwork(const Module& module);
    ~ScriptedNetwork();
    ScriptedNetwork(const ScriptedNetwork&) = delete;
    ScriptedNetwork& operator=(const ScriptedNetwork&) = delete;

    // Around an unload of the module, which needs its own functions back.
    void Detach() { patches_.clear(); }
    void Attach(const Module& module);

    // Sockets are the network's own from now on: in Wine a real one costs a dozen calls of another
    // process, too many for a sweep that opens thousands.
    void MakeSocketsUp(const Module& module);

    // These devices are there from now on; null: silent ones. Forgets the requests and the waits
    // so far and what has not been received yet.
    void Devices(Reply reply);
    const std::vector<Request>& Requests() const { return requests_; }
    // The waits, in milliseconds, that passed without a datagram.
    const std::vector<int>& SilentWaits() const { return silentWaits_; }
    // Calls of recvfrom, and the datagrams that they took.
    int Receives() const { return receives_; }
    int Datagrams() const { return datagrams_; }
    // Sockets of the module that are not closed.
    size_t OpenSockets() const { return sockets_.size(); }
    // The clock of the module, in milliseconds since it began. It moves on in waits and in Sleep,
    // and with each of many calls that fail in a row, so that no loop lasts for ever. What
    // GetTickCount tells wraps half a minute after the beginning.
    uint64_t NowMs() const { return nowMs_; }

    // WinSock errors to report instead: each gets the number of the call, from 1, and returns an
    // error or 0. What was queued stays queued.
    std::function<int(int call)> sendError;
    std::function<int(int call)> receiveError;
    // As the module takes a datagram; gets the number of datagrams so far, from 1.
    std::function<void(int datagrams)> onDatagram;

  private:
    struct Datagram {
        Bytes data;
        std::string from;
    };
    using Queue = std::multimap<uint64_t, Datagram>;  // by arrival
    struct Socket {
        Queue queue;
        std::string bound;  // local address
        bool isNonBlocking = false, isReal = true;
    };
    Socket* Find(SOCKET handle);  // null: that is no socket
    int Send(SOCKET handle, Bytes data, const sockaddr* to);
    int Wait(fd_set* readable, int waitMs);
    int Receive(SOCKET handle, char* buffer, int size, sockaddr* from, int* fromLength);
    // Moves the clock until a datagram has arrived, at most so far.
    bool WaitFor(const Queue& queue, uint64_t untilMs);
    int Fail(int error);

    std::list<ImportPatch> patches_;
    Reply reply_;
    std::vector<Request> requests_;
    std::vector<int> silentWaits_;
    std::map<SOCKET, Socket> sockets_;
    SOCKET lastMadeUp_ = 0x1000000;  // no handle of the system's
    uint64_t nowMs_ = 0;
    int sends_ = 0, receives_ = 0, datagrams_ = 0, failuresInARow_ = 0;
};

}  // namespace vndiscover
