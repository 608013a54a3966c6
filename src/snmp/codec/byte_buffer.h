// The growable byte buffer for BER elements, keys, digests and cipher texts.
#pragma once

#include <cstdint>

namespace vndiscover {

// Owns one block of exactly `length` bytes, without spare capacity, since datagrams are small.
// `data` is null if and only if `length` is 0. Memory is wiped before it is freed. All zero bytes
// are an empty buffer. Throws std::bad_alloc.
struct ByteBuffer {
    uint8_t* data = nullptr;
    uint32_t length = 0;

    ByteBuffer() noexcept = default;
    ByteBuffer(const ByteBuffer& other);
    ByteBuffer(ByteBuffer&& other) noexcept;
    ByteBuffer& operator=(const ByteBuffer& other);
    ByteBuffer& operator=(ByteBuffer&& other) noexcept;
    ~ByteBuffer() { Clear(); }

    void Clear() noexcept;
    // Null, or a count below 1, empties it. `bytes` may point into the buffer itself.
    void Assign(const uint8_t* bytes, int32_t count);
    void SetByte(uint8_t byte) { Assign(&byte, 1); }  // Nothing in the module calls it.
    void Append(uint8_t byte) { Append(&byte, 1); }
    void Append(const uint8_t* bytes, int32_t count);  // null or a count below 1: does nothing
    void Append(const ByteBuffer& other) { Join(data, length, other.data, other.length); }
    void Prepend(uint8_t byte) { Prepend(&byte, 1); }
    void Prepend(const uint8_t* bytes, int32_t count);
    // Writes the bytes to the wide log. Nothing in the module calls it.
    void HexDump() const;

    bool Empty() const noexcept { return length == 0; }

  private:
    // Replaces the block with `front` followed by `back`.
    void Join(const uint8_t* front, uint32_t frontCount, const uint8_t* back, uint32_t backCount);
};

}  // namespace vndiscover
