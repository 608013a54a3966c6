// The network for the measurements (lab.sh), and its answerer (native/answerer.c).
#pragma once

#include <cstdint>

#include "support/win.h"

namespace vndiscover {

constexpr char kAgent[] = "10.77.1.11";    // a real agent
constexpr char kAnswerer[] = "10.77.1.2";  // answers sweeps as told, and directed requests at once
constexpr char kHost[] = "10.77.1.1";      // this host
constexpr char kSysName[] = ".1.3.6.1.2.1.1.5.0";

// The answers to the next sweep.
struct AnswerPlan {
    int count;
    int perSecond;  // 0: as fast as the answerer can
    int size;       // bytes of each datagram: the answer, padded with zeros
};

constexpr int kPlainAnswer = 0;  // size: the answer without padding

// Exits with a message if the answerer is not running. Requires that WinSock is started.
void PlanAnswers(const AnswerPlan& plan);

// Microseconds from the answerer's first to its last datagram of the last plan.
int64_t AnsweringTimeUs();

sockaddr_in AddressOf(const char* text, uint16_t port);

}  // namespace vndiscover
