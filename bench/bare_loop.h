// What the same work costs without the module: the least a program can do with the socket calls.
#pragma once

#include <cstdint>

#include "support/win.h"

namespace vndiscover {

struct Bytes {
    const void* data;
    int length;
};

// SNMPv1 GetRequests of community "sesame", made by hand.
extern const Bytes kAskSysName;
extern const Bytes kAskDiscoveryOid;

// Open, bind, send, select, receive, close. Bytes received; 0 after 2 s of silence.
int BareExchange(const char* host, const Bytes& request, char* answer, int answerSize);

// Sends the discovery request to the broadcast address and receives (select, receive) until 2 s
// have passed silently or `most` answers are there. Their count.
int BareCollect(bool raisesBuffer, int most);

}  // namespace vndiscover
