#include "lab.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace vndiscover {
namespace {

constexpr uint16_t kControlPort = 9161;
constexpr DWORD kControlWaitMs =
    20000;  // the answerer listens again once it has sent all its answers

std::string AskAnswerer(const std::string& words) {
    const SOCKET control = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    setsockopt(control, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&kControlWaitMs),
               sizeof kControlWaitMs);
    const sockaddr_in to = AddressOf(kAnswerer, kControlPort);
    sendto(control, words.data(), static_cast<int>(words.size()), 0,
           reinterpret_cast<const sockaddr*>(&to), sizeof to);
    char reply[64] = {};
    if (recv(control, reply, sizeof reply - 1, 0) <= 0) {
        std::fprintf(stderr, "no answerer: run scripts/bench.sh\n");
        std::exit(1);
    }
    closesocket(control);
    return reply;
}

}  // namespace

void PlanAnswers(const AnswerPlan& plan) {
    AskAnswerer("plan " + std::to_string(plan.count) + ' ' + std::to_string(plan.perSecond) + ' ' +
                std::to_string(plan.size));
}

int64_t AnsweringTimeUs() { return std::strtoll(AskAnswerer("time").c_str(), nullptr, 10); }

sockaddr_in AddressOf(const char* text, uint16_t port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = inet_addr(text);
    return address;
}

}  // namespace vndiscover
