#include "snmp/codec/byte_buffer.h"

#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "support/hex_text.h"
#include "support/secure_wipe.h"

namespace vndiscover {

ByteBuffer::ByteBuffer(const ByteBuffer& other) { Join(other.data, other.length, nullptr, 0); }

ByteBuffer::ByteBuffer(ByteBuffer&& other) noexcept
    : data(std::exchange(other.data, nullptr)), length(std::exchange(other.length, 0u)) {}

ByteBuffer& ByteBuffer::operator=(const ByteBuffer& other) {
    if (this != &other) Join(other.data, other.length, nullptr, 0);
    return *this;
}

ByteBuffer& ByteBuffer::operator=(ByteBuffer&& other) noexcept {
    std::swap(data, other.data);
    std::swap(length, other.length);
    return *this;
}

// Wiped, because these buffers carry keys and plain texts, and growing one frees a copy.
void ByteBuffer::Clear() noexcept {
    SecureWipe(data, length);
    delete[] data;
    data = nullptr;
    length = 0;
}

void ByteBuffer::Join(const uint8_t* front, uint32_t frontCount, const uint8_t* back,
                      uint32_t backCount) {
    if (backCount > std::numeric_limits<uint32_t>::max() - frontCount) throw std::bad_alloc();
    const uint32_t joined = frontCount + backCount;
    uint8_t* block = nullptr;
    if (joined != 0) {
        block = new uint8_t[joined];
        if (frontCount != 0) std::memcpy(block, front, frontCount);
        if (backCount != 0) std::memcpy(block + frontCount, back, backCount);
    }
    Clear();
    data = block;
    length = joined;
}

void ByteBuffer::Assign(const uint8_t* bytes, int32_t count) {
    if (!bytes || count <= 0) {
        Clear();
        return;
    }
    Join(bytes, static_cast<uint32_t>(count), nullptr, 0);
}

void ByteBuffer::Append(const uint8_t* bytes, int32_t count) {
    if (!bytes || count <= 0) return;
    Join(data, length, bytes, static_cast<uint32_t>(count));
}

void ByteBuffer::Prepend(const uint8_t* bytes, int32_t count) {
    if (!bytes || count <= 0) {
        if (length == 0) Clear();
        return;
    }
    Join(bytes, static_cast<uint32_t>(count), data, length);
}

void ByteBuffer::HexDump() const {
    if (!data) return;
    wchar_t text[2000 / sizeof(wchar_t)];
    WriteHex(text, data, length, 2);
    DebugLogW(L"%s\n", text);
}

}  // namespace vndiscover
