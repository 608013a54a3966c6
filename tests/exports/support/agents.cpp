#include "exports/support/agents.h"

#include <chrono>
#include <sstream>
#include <stdexcept>

namespace vndiscover {
namespace {

constexpr u_short kRelayPort = 47161;
constexpr DWORD kSyncLimitMs = 20000;

SOCKET Connect() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);  // undone by the end of the process
    const SOCKET created = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in relay = {};
    relay.sin_family = AF_INET;
    relay.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    relay.sin_port = htons(kRelayPort);
    if (connect(created, reinterpret_cast<const sockaddr*>(&relay), sizeof relay) != 0) {
        throw std::runtime_error("tests/lab/relay.py does not run in this lab");
    }
    const BOOL noDelay = TRUE;
    setsockopt(created, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&noDelay),
               sizeof noDelay);
    return created;
}

// "-" for no bytes at all.
std::string Word(const Bytes& bytes) { return bytes.empty() ? "-" : ToHex(bytes); }

bool IsIPv6(const std::string& address) { return address.find(':') != std::string::npos; }

// A device's own address in that network, for answers to what was sent to everybody.
std::string AddressIn(const std::string& net, bool ipv6) {
    if (net == "host") return "127.0.0.1";
    if (net == "neta") return ipv6 ? "fe80::1:2" : "10.77.1.2";
    return ipv6 ? "fe80::2:2" : "10.77.2.2";
}

bool IsToEverybody(const std::string& address) {
    return address == "255.255.255.255" || address.rfind("239.", 0) == 0 ||
           address.rfind("ff02:", 0) == 0;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Request& request) {
    return out << request.net << ": " << request.sender << ':' << request.senderPort << " > "
               << request.local << ':' << request.port << ' ' << Word(request.data);
}

int64_t NowMs() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

Agents::Agents(Reply reply)
    : reply_(std::move(reply)),
      socket_(Connect()),
      synced_(CreateEventA(nullptr, FALSE, FALSE, nullptr)),
      thread_([this] { Run(); }) {
    Requests();  // the relay has taken this connection: what is sent from now on arrives here
}

Agents::~Agents() {
    shutdown(socket_, SD_BOTH);
    thread_.join();
    closesocket(socket_);
    CloseHandle(synced_);
}

std::vector<Request> Agents::Requests() {
    Tell("sync");
    if (WaitForSingleObject(synced_, kSyncLimitMs) != WAIT_OBJECT_0) {
        throw std::runtime_error("the relay is silent");
    }
    std::lock_guard<std::mutex> lock(mutex_);
    return requests_;
}

void Agents::Send(const std::string& net, int port, const std::string& toAddress, int toPort,
                  const Answer& answer) {
    const std::string from = answer.from.empty() ? AddressIn(net, IsIPv6(toAddress)) : answer.from;
    std::ostringstream line;
    line << "send " << net << ' ' << from << ' ' << port << ' ' << toAddress << ' ' << toPort << ' '
         << Word(answer.data) << " delay=" << answer.delayMs << " repeat=" << answer.repeat
         << " gap=" << answer.gapUs;
    if (answer.numberAt >= 0) line << " number=" << answer.numberAt;
    Tell(line.str());
}

void Agents::AnswerByItself(const std::string& net, int port, const Bytes& data) {
    Tell("auto " + net + ' ' + std::to_string(port) + ' ' + Word(data));
    Requests();  // it is in force on return
}

void Agents::Tell(const std::string& line) {
    const std::string text = line + '\n';
    std::lock_guard<std::mutex> lock(mutex_);
    for (size_t sent = 0; sent < text.size();) {
        const int count =
            send(socket_, text.data() + sent, static_cast<int>(text.size() - sent), 0);
        if (count <= 0) return;  // shows as a relay that is silent
        sent += static_cast<size_t>(count);
    }
}

void Agents::Run() {
    std::string text;
    char block[16384];
    for (int count; (count = recv(socket_, block, sizeof block, 0)) > 0;) {
        text.append(block, static_cast<size_t>(count));
        for (size_t end; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1)) {
            TakeLine(text.substr(0, end));
        }
    }
}

void Agents::TakeLine(const std::string& line) {
    std::istringstream words(line);
    std::string kind;
    words >> kind;
    if (kind == "synced") {
        SetEvent(synced_);
        return;
    }
    Request request;
    std::string hex;
    words >> request.net >> request.local >> request.port >> request.sender >> request.senderPort >>
        hex;
    request.data = Hex(hex);  // "-" is none
    request.atMs = NowMs();
    {
        std::lock_guard<std::mutex> lock(mutex_);
        requests_.push_back(request);
    }
    if (!reply_) return;
    for (Answer answer : reply_(request)) {
        if (answer.from.empty() && !IsToEverybody(request.local)) answer.from = request.local;
        Send(request.net, request.port, request.sender, request.senderPort, answer);
    }
}

}  // namespace vndiscover
