// The devices of the test network: what the module sends to them, and what they answer.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "helpers/bytes.h"
#include "support/win.h"

namespace vndiscover {

// A datagram that reached a device.
struct Request {
    std::string net;     // "neta", "netb", "host"
    std::string local;   // where it was sent: the address of a device, or of everybody
    int port;            // and the port there
    std::string sender;  // without zone suffix
    int senderPort;
    Bytes data;
    int64_t atMs;  // on the clock of NowMs()
};
std::ostream& operator<<(std::ostream& out, const Request& request);

// What a device sends back.
struct Answer {
    Bytes data;
    std::string from = {};  // empty: where the request went, or the network's own address
    int delayMs = 0;
    int repeat = 1;
    int gapUs = 0;      // between repetitions; 0: as fast as the machine can
    int numberAt = -1;  // the five bytes there become the repetition's number, "00000" first
};

using Answers = std::vector<Answer>;
using Reply = std::function<Answers(const Request&)>;

// Milliseconds of a clock that no test moves.
int64_t NowMs();

// Connected to tests/lab/relay.py. `reply` runs on a thread of this object, one request at a time.
class Agents {
  public:
    explicit Agents(Reply reply = nullptr);
    ~Agents();
    Agents(const Agents&) = delete;
    Agents& operator=(const Agents&) = delete;

    // Everything that has been sent to the devices so far.
    std::vector<Request> Requests();
    // Sends without having been asked. port is the device's own port, to is "address:port".
    void Send(const std::string& net, int port, const std::string& toAddress, int toPort,
              const Answer& answer);
    // Answers every datagram to that port without this process in between; empty: no more.
    void AnswerByItself(const std::string& net, int port, const Bytes& data);

  private:
    void Run();
    void TakeLine(const std::string& line);
    void Tell(const std::string& line);

    Reply reply_;
    SOCKET socket_;
    std::mutex mutex_;
    std::vector<Request> requests_;
    HANDLE synced_;
    std::thread thread_;
};

}  // namespace vndiscover
