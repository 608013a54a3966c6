// Bytes for tests.
#pragma once

#include <cstdint>
#include <cstdio>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

// A copy has a heap block of exactly its size, so that the sanitizer finds reads past the end.
using Bytes = std::vector<uint8_t>;

// "30 0a", with blanks anywhere except within a byte.
inline Bytes Hex(const std::string& text) {
    Bytes bytes;
    unsigned byte = 0;
    int read = 0;
    for (const char* at = text.c_str(); std::sscanf(at, "%2x%n", &byte, &read) == 1; at += read) {
        bytes.push_back(static_cast<uint8_t>(byte));
    }
    return bytes;
}

// "300a", with `after` following each byte.
inline std::string ToHex(const Bytes& bytes, const char* after = "") {
    std::ostringstream text;
    text << std::hex << std::setfill('0');
    for (const int byte : bytes) text << std::setw(2) << byte << after;
    return text.str();
}

inline Bytes TextBytes(const std::string& text) { return Bytes(text.begin(), text.end()); }

inline Bytes ToBytes(const ByteBuffer& buffer) {
    return Bytes(buffer.data, buffer.data + buffer.length);
}

inline ByteBuffer ToBuffer(const Bytes& bytes) {
    ByteBuffer buffer;
    buffer.Assign(bytes.data(), static_cast<int32_t>(bytes.size()));
    return buffer;
}

inline Bytes operator+(Bytes front, const Bytes& back) {
    front.insert(front.end(), back.begin(), back.end());
    return front;
}

inline Bytes Prefix(const Bytes& bytes, size_t count) {
    return Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
}

// A BER value in the shortest length form, written without the encoder under test.
inline Bytes Tlv(uint8_t tag, const Bytes& content) {
    const size_t size = content.size();
    const auto low = static_cast<uint8_t>(size), high = static_cast<uint8_t>(size >> 8);
    return (size < 0x80    ? Bytes{tag, low}
            : size < 0x100 ? Bytes{tag, 0x81, low}
                           : Bytes{tag, 0x82, high, low}) +
           content;
}

}  // namespace vndiscover
