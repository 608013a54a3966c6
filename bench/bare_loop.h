// The same work without the module, with the fewest socket calls that a program can make.
#pragma once

#include <cstdint>

#include "support/win.h"

namespace vndiscover {

struct Bytes {
    const void* data;
    int length;
};

// Handmade SNMPv1 GetRequests with the community "sesame".
extern const Bytes kAskSysName;
extern const Bytes kAskDiscoveryOid;

// Open, bind, send, select, receive, close. Returns the bytes received; 0 after 2 s of silence.
int BareExchange(const char* host, const Bytes& request, char* answer, int answerSize);

// Broadcasts the discovery request and receives (select, receive) until no answer has come for 2 s,
// or `most` have. Returns their number.
int BareCollect(bool raisesBuffer, int most);

}  // namespace vndiscover
