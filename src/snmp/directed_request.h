// Directed community-based requests as hosts call them: each makes a manager of its own for one
// exchange.
#pragma once

#include <cstdint>

#include "vndiscover.h"

namespace vndiscover {

constexpr uint32_t kDirectedWaitMs = 1000;  // passed along, not used
constexpr int32_t kDirectedAttempts = 5;    // receive waits of one request
constexpr int32_t kInformationSize = 260;   // bytes of GetSnmpInformation's buffer

// Copies a text into a host's buffer. Null: nothing is written. A text that does not fit is the
// caller's fault and goes to the runtime's invalid-parameter handler.
void CopyTextForHost(char* out, int32_t outSize, const char* text);

// Results and arguments as in the public header; host may be null.
int32_t RequestText(const char* host, const char* oid, char* outValue, int32_t outSize,
                    uint32_t expectedType, const char* readCommunity, const char* writeCommunity);
int32_t RequestRaw(const char* host, const char* oid, uint8_t* value, int32_t valueSize,
                   uint32_t* valueType, const char* readCommunity, const char* writeCommunity);
int32_t RequestNext(const char* host, const char* oid, VnResponseRecord* record,
                    const char* readCommunity, const char* writeCommunity);
int32_t RequestSet(const char* host, const char* oid, uint8_t* value, int32_t valueLength,
                   uint32_t* valueType, const char* readCommunity, const char* writeCommunity);

}  // namespace vndiscover
