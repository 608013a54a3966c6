// Hashing of files, and what the log says where that fails.
#include <gtest/gtest.h>

#include <cstdio>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "snmpv3/crypto/windows/capi_file_hash.h"

namespace vndiscover {
namespace {

TEST(FileHash, HashesAWholeFileOrSaysWhyNot) {
    const char kName[] = "file_hash_test.bin";
    std::FILE* file = std::fopen(kName, "wb");
    ASSERT_NE(nullptr, file);
    for (int i = 0; i < 5000; ++i) std::fputc('a', file);
    std::fclose(file);
    ByteBuffer digest;
    EXPECT_TRUE(CapiHashFile(kName, digest));
    // Computed with md5sum.
    EXPECT_EQ(Hex("7aaa7dec709fa4fa82f3746abfd80bdb"), ToBytes(digest));

    std::remove(kName);
    UnitLog log;
    EXPECT_FALSE(CapiHashFile(kName, digest));
    EXPECT_TRUE(digest.Empty());
    EXPECT_EQ(std::vector<std::string>{"Error [2] opening file file_hash_test.bin.\n"},
              log.Lines());
}

}  // namespace
}  // namespace vndiscover
