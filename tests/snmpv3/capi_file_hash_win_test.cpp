#include "snmpv3/capi_file_hash.h"

#include <gtest/gtest.h>

#include <fstream>

#include "helpers/bytes.h"
#include "helpers/log_capture.h"

namespace vndiscover {
namespace {

TEST(FileHash, HashesAWholeFileOrSaysWhyNot) {
    const char kName[] = "file_hash_test.bin";
    std::ofstream(kName, std::ios::binary) << std::string(5000, 'a');
    ByteBuffer digest;
    EXPECT_TRUE(CapiHashFile(kName, digest));
    EXPECT_EQ(Hex("7aaa7dec709fa4fa82f3746abfd80bdb"), ToBytes(digest));  // as md5sum has it
    std::remove(kName);
    UnitLog log;
    EXPECT_FALSE(CapiHashFile(kName, digest));
    EXPECT_TRUE(digest.Empty());
    EXPECT_EQ("Error [2] opening file file_hash_test.bin.\n", log.Text());
}

}  // namespace
}  // namespace vndiscover
