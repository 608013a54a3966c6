// The community-based request for a value as text.
#pragma once

#include <cstdint>

namespace vndiscover {

// As the host gives them; null and "" mean the default.
struct Communities {
    const char* read;
    const char* write;
};

// A host's buffer for a text.
struct TextBuffer {
    char* text;    // may be null
    int32_t size;  // bytes
};

// As GetSnmpRequest in the public header: makes a manager of its own. host may be null.
int32_t RequestText(const char* host, const char* oid, const TextBuffer& out, uint32_t expectedType,
                    const Communities& communities);

}  // namespace vndiscover
