// The network that the measurements run in (lab.sh), and its answerer (native/answerer.c).
#pragma once

#include <cstdint>

#include "support/win.h"

namespace vndiscover {

constexpr char kAgent[] = "10.77.1.11";    // a real agent
constexpr char kAnswerer[] = "10.77.1.2";  // answers sweeps as told, and directed requests at once
constexpr char kHost[] = "10.77.1.1";      // this host
constexpr char kSysName[] = ".1.3.6.1.2.1.1.5.0";

// What the next sweep is answered with.
struct AnswerPlan {
    int count;
    int perSecond;  // 0: as fast as the answerer can
    int size;       // bytes of each datagram: the answer, filled up with zeros behind it
};

constexpr int kPlainAnswer = 0;  // size: the answer alone

// Exits with a message when the answerer is not there. Needs WinSock started.
void PlanAnswers(const AnswerPlan& plan);

// Microseconds that the last plan took the answerer from its first to its last datagram.
int64_t AnsweringTimeUs();

sockaddr_in AddressOf(const char* text, uint16_t port);

}  // namespace vndiscover
