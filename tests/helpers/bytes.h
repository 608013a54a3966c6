// Bytes in tests.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

using Bytes = std::vector<uint8_t>;

// "30 0a", blanks anywhere.
inline Bytes Hex(const std::string& text) {
    Bytes bytes;
    std::string digits;
    for (char c : text) {
        if (c != ' ') digits += c;
        if (digits.size() == 2) {
            bytes.push_back(static_cast<uint8_t>(std::strtoul(digits.c_str(), nullptr, 16)));
            digits.clear();
        }
    }
    return bytes;
}

// "300a", or with `behind` each byte.
inline std::string ToHex(const Bytes& bytes, const char* behind = "") {
    std::string text;
    for (const uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x", byte);
        (text += digits) += behind;
    }
    return text;
}

inline Bytes TextBytes(const std::string& text) { return Bytes(text.begin(), text.end()); }

inline Bytes ToBytes(const ByteBuffer& buffer) {
    return buffer.data ? Bytes(buffer.data, buffer.data + buffer.length) : Bytes();
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

// A heap block of exactly the size of what it holds: a read beyond its end is seen by the
// sanitizer.
class ExactBlock {
  public:
    explicit ExactBlock(const Bytes& bytes)
        : size_(bytes.size()), block_(std::make_unique<uint8_t[]>(size_)) {
        if (size_ != 0) std::memcpy(block_.get(), bytes.data(), size_);
    }
    uint8_t* Data() { return block_.get(); }
    int32_t Size() const { return static_cast<int32_t>(size_); }
    Bytes Content() const { return Bytes(block_.get(), block_.get() + size_); }

  private:
    size_t size_;
    std::unique_ptr<uint8_t[]> block_;
};

// A BER value in the shortest length form, written without the encoder under test.
inline Bytes Tlv(uint8_t tag, const Bytes& content) {
    const size_t size = content.size();
    Bytes header = {tag};
    if (size >= 0x100) {
        header = header + Bytes{0x82, static_cast<uint8_t>(size >> 8)};
    } else if (size >= 0x80) {
        header.push_back(0x81);
    }
    header.push_back(static_cast<uint8_t>(size));
    return header + content;
}

}  // namespace vndiscover
