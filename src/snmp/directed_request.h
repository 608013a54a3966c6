// Directed community-based requests as hosts call them: each makes a manager of its own for one
// exchange.
#pragma once

#include <cstdint>

#include "vndiscover.h"

namespace vndiscover {

// What a host asks for. Texts may be null.
struct DirectedRequest {
    const char* host;
    const char* oid;
    const char* readCommunity;
    const char* writeCommunity;
};

// A host's buffer for one value.
struct HostValue {
    void* bytes;     // may be null
    int32_t size;    // of the buffer; to set: of the value in it
    uint32_t* type;  // BER tag; may be null
};

// Results and arguments as in the public header.
int32_t RequestText(const DirectedRequest& request, char* outValue, int32_t outSize,
                    uint32_t expectedType);
int32_t RequestRaw(const DirectedRequest& request, const HostValue& value);
int32_t RequestNext(const DirectedRequest& request, VnResponseRecord* record);
int32_t RequestSet(const DirectedRequest& request, const HostValue& value);

}  // namespace vndiscover
