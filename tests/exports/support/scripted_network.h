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
    std::string net;     // "neta", "netb", "host": by the socket's local address
    std::string local;   // the receiver's address, or that of a broadcast or multicast
    int port;            // and the port there
    std::string sender;  // its local address, without zone suffix
    Bytes data;
    SOCKET socket;  // open while the devices reply

    std::string Way() const;  // "net: sender > address:port"
};
std::ostream& operator<<(std::ostream& out, const Request& request);

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
Answers Repeated(size_t count, const Answer& answer, uint32_t gapMs = 0);

// One object at a time. All of it runs on the thread that calls the module.
class ScriptedNetwork {
  public:
    explicit ScriptedNetwork(const Module& module);
    ~ScriptedNetwork();
    ScriptedNetwork(const ScriptedNetwork&) = delete;
    ScriptedNetwork& operator=(const ScriptedNetwork&) = delete;

    // For unloading the module, which needs its original functions.
    void Detach() { patches_.clear(); }
    void Attach(const Module& module);

    // From now on sockets are simulated: in Wine a real one takes a dozen calls of another process,
    // too slow for a sweep that opens thousands.
    void MakeSocketsUp(const Module& module);

    // From now on there are these devices; if null, silent ones. Clears the recorded requests and
    // waits, and what has not been received yet.
    void Devices(Reply reply);
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

    // WinSock errors to report instead: each function gets the number of the call, from 1, and
    // returns an error or 0. Queued datagrams stay queued.
    std::function<int(int call)> sendError;
    std::function<int(int call)> receiveError;
    // Called when the module receives a datagram, with the number of datagrams so far, from 1.
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
    Socket* Find(SOCKET handle);  // null if it is not a socket
    int Send(SOCKET handle, Bytes data, const sockaddr* to);
    int Wait(fd_set* readable, int waitMs);
    int Receive(SOCKET handle, char* buffer, int size, sockaddr* from, int* fromLength);
    // Advances the clock until a datagram has arrived, but no further than this.
    bool WaitFor(const Queue& queue, uint64_t untilMs);
    int Fail(int error);

    std::list<ImportPatch> patches_;
    Reply reply_;
    std::vector<Request> requests_;
    std::vector<int> silentWaits_;
    std::map<SOCKET, Socket> sockets_;
    SOCKET lastMadeUp_ = 0x1000000;  // not a handle of the system
    uint64_t nowMs_ = 0;
    int sends_ = 0, receives_ = 0, datagrams_ = 0, failuresInARow_ = 0;
};

}  // namespace vndiscover
