#include "snmp/codec/byte_buffer.h"

#include <gtest/gtest.h>

#include <utility>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"

namespace vndiscover {
namespace {

const uint8_t kOneTwo[] = {1, 2};

// data is null exactly when nothing is held.
void ExpectHolds(const Bytes& bytes, const ByteBuffer& buffer) {
    EXPECT_EQ(bytes, ToBytes(buffer));
    EXPECT_EQ(bytes.size(), buffer.length);
    EXPECT_EQ(bytes.empty(), buffer.data == nullptr);
}

TEST(ByteBufferTest, AppendsAndPrependsToWhatItHoldsIfAnything) {
    ByteBuffer buffer;
    ExpectHolds({}, buffer);
    buffer.Prepend(kOneTwo, 2);
    buffer.Append(3);
    buffer.Append(kOneTwo, 2);
    buffer.Prepend(uint8_t{0});
    ExpectHolds({0, 1, 2, 3, 1, 2}, buffer);
    for (const uint8_t* nothing : {static_cast<const uint8_t*>(nullptr), kOneTwo}) {
        buffer.Append(nothing, nothing ? -1 : 5);
        buffer.Append(nothing, 0);
        buffer.Prepend(nothing, nothing ? -1 : 5);
    }
    ExpectHolds({0, 1, 2, 3, 1, 2}, buffer);
    buffer.SetByte(9);
    buffer.Append(buffer);
    ExpectHolds({9, 9}, buffer);
    buffer.Assign(kOneTwo, 0);
    ExpectHolds({}, buffer);
    buffer.Append(6);
    ExpectHolds({6}, buffer);
    buffer.Assign(nullptr, 5);
    ExpectHolds({}, buffer);
}

TEST(ByteBufferTest, CopiesAreDeepAndMovesTakeOver) {
    ByteBuffer original = ToBuffer({1, 2});
    ByteBuffer copy = original;
    copy.Append(3);
    ExpectHolds({1, 2}, original);
    original = copy;
    ByteBuffer& itself = original;
    original = itself;
    ExpectHolds({1, 2, 3}, original);
    original.Assign(original.data + 1, 2);  // a part of what it holds
    const ByteBuffer moved = std::move(original);
    ExpectHolds({2, 3}, moved);
}

TEST(ByteBufferTest, DumpsItsBytesAsOneWideLineOfLimitedLength) {
    UnitLog log;
    ByteBuffer().HexDump();
    ToBuffer({0x00, 0xA5, 0xFF}).HexDump();
    EXPECT_EQ(std::vector<std::string>{"00  a5  ff  \n"}, log.Lines());
    ToBuffer(Bytes(3000, 0x11)).HexDump();
    EXPECT_LE(log.Lines().at(1).size(), 2000 / sizeof(wchar_t));
}

}  // namespace
}  // namespace vndiscover
