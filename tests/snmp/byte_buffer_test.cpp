#include "snmp/byte_buffer.h"

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

TEST(ByteBufferTest, AppendsAndPrependsToWhatItHolds) {
    ByteBuffer buffer;
    ExpectHolds({}, buffer);
    buffer.Append(kOneTwo, 2);
    buffer.Append(3);
    buffer.Prepend(uint8_t{0});
    ExpectHolds({0, 1, 2, 3}, buffer);
    buffer.Prepend(kOneTwo, 2);
    ExpectHolds({1, 2, 0, 1, 2, 3}, buffer);
    buffer.SetByte(9);
    ExpectHolds({9}, buffer);
    buffer.Append(buffer);
    ExpectHolds({9, 9}, buffer);
}

TEST(ByteBufferTest, AClearedBufferStartsAnew) {
    ByteBuffer buffer = ToBuffer({7, 7});
    buffer.Clear();
    ExpectHolds({}, buffer);
    buffer.Prepend(kOneTwo, 2);
    ExpectHolds({1, 2}, buffer);
    buffer.Clear();
    buffer.Prepend(uint8_t{5});
    ExpectHolds({5}, buffer);
    buffer.Clear();
    buffer.Append(6);
    ExpectHolds({6}, buffer);
}

TEST(ByteBufferTest, NothingToAddChangesNothingButAssignClears) {
    ByteBuffer buffer = ToBuffer({1});
    buffer.Append(nullptr, 5);
    buffer.Append(kOneTwo, 0);
    buffer.Append(kOneTwo, -1);
    buffer.Prepend(nullptr, 5);
    buffer.Prepend(kOneTwo, 0);
    ExpectHolds({1}, buffer);
    buffer.Assign(kOneTwo, 0);
    ExpectHolds({}, buffer);
    buffer.Assign(kOneTwo, 2);
    buffer.Assign(nullptr, 0);
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
    ExpectHolds({2, 3}, original);
    const ByteBuffer moved = std::move(original);
    ExpectHolds({2, 3}, moved);
}

TEST(ByteBufferTest, DumpsItsBytesAsOneWideLineOfLimitedLength) {
    UnitLog log;
    ByteBuffer().HexDump();
    EXPECT_TRUE(log.Lines().empty());
    ToBuffer({0x00, 0xA5, 0xFF}).HexDump();
    EXPECT_EQ("00  a5  ff  \n", log.Lines().at(0));
    ToBuffer(Bytes(3000, 0x11)).HexDump();
    EXPECT_LE(log.Lines().at(1).size(), 2001u);
}

}  // namespace
}  // namespace vndiscover
