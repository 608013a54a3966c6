// Requests one value as text over SNMPv1.
#pragma once

#include <cstdint>

namespace vndiscover {

// As the host passes them; null and "" mean the default.
struct Communities {
    const char* read;
    const char* write;
};

// A host's buffer for a text.
struct TextBuffer {
    char* text;    // may be null
    int32_t size;  // bytes
};

// Does what the public header says of GetSnmpRequest, with a manager of its own. host may be null.
int32_t RequestText(const char* host, const char* oid, const TextBuffer& out, uint32_t expectedType,
                    const Communities& communities);

}  // namespace vndiscover
