// The growable byte buffer that carries every BER piece, key, digest and cipher text.
#pragma once

#include <cstdint>

namespace vndiscover {

// Owns one block of exactly `length` bytes; `data` is null if and only if there are none. No
// reserve is kept: datagrams are small. Freed bytes are wiped. All zero bytes are its empty state.
// Throws std::bad_alloc.
struct ByteBuffer {
    uint8_t* data = nullptr;
    uint32_t length = 0;

    ByteBuffer() noexcept = default;
    ByteBuffer(const ByteBuffer& other);
    ByteBuffer(ByteBuffer&& other) noexcept;
    ByteBuffer& operator=(const ByteBuffer& other);
    ByteBuffer& operator=(ByteBuffer&& other) noexcept;
    ~ByteBuffer();

    void Clear() noexcept;
    // Null, or a count below 1, leaves it empty. `bytes` may lie in the buffer itself.
    void Assign(const uint8_t* bytes, int32_t count);
    void SetByte(uint8_t byte);  // Nothing in the module calls it.
    void Append(uint8_t byte);
    void Append(const uint8_t* bytes, int32_t count);  // null or a count below 1: nothing
    void Append(const ByteBuffer& other);
    void Prepend(uint8_t byte);
    void Prepend(const uint8_t* bytes, int32_t count);
    // Writes the bytes to the wide log. Nothing in the module calls it.
    void HexDump() const;

    bool Empty() const noexcept { return length == 0; }

  private:
    // Replaces the block by `front` followed by `back`.
    void Join(const uint8_t* front, uint32_t frontCount, const uint8_t* back, uint32_t backCount);
};

}  // namespace vndiscover
