// What the log says when the platform's crypto libraries fail.
#include <gtest/gtest.h>

#include <cstdio>
#include <iterator>

#include "helpers/bytes.h"
#include "helpers/unit_log.h"
#include "snmpv3/capi_crypto.h"
#include "snmpv3/capi_file_hash.h"
#include "snmpv3/capi_key_blob.h"
#include "snmpv3/cng_library.h"
#include "snmpv3/protocol_codes.h"

namespace vndiscover {
namespace {

using Lines = std::vector<std::string>;

constexpr HCRYPTPROV kNoProvider = 0;

// A format with its "%d" or "%x" filled in.
std::string Line(const char* format, unsigned long code) {
    char text[128];
    std::snprintf(text, sizeof text, format, static_cast<unsigned>(code));
    return text;
}

TEST(CapiFailures, EachIsLoggedWithTheErrorOfItsCall) {
    const uint8_t byte = 0;
    ByteBuffer digest;
    UnitLog log;
    for (uint32_t code : {kAuthMd5, kAuthSha1}) {
        CapiHash hash(kNoProvider, code);
        EXPECT_FALSE(hash.Add(&byte, 1));
        EXPECT_FALSE(hash.Finish(digest));
    }
    EXPECT_FALSE(ImportPlainKey(kNoProvider, CALG_DES, &byte, 1, 0));
    const OwnedCryptProvider provider = OpenHashProvider(CRYPT_VERIFYCONTEXT);
    for (uint32_t code : {kAuthMd5, kAuthSha1}) {
        CapiHash hash(provider.Get(), code);
        EXPECT_TRUE(hash.Finish(digest));
        EXPECT_FALSE(hash.Add(&byte, 1));  // a finished hash takes no more
    }
    EXPECT_FALSE(OpenHashProvider(0xFFFFFFFF));
    EXPECT_EQ(
        (Lines{Line("Error CALG_MD5 [%d] CryptCreateHash failed.\n", ERROR_INVALID_PARAMETER),
               Line("Error CALG_SHA1 [%d] CryptCreateHash failed.\n", ERROR_INVALID_PARAMETER),
               Line("Err %d\n", ERROR_INVALID_PARAMETER),
               Line("Error [%d] CryptHashData failed.\n", NTE_BAD_HASH_STATE),
               Line("Error CALG_SHA1 [%d] CryptHashData failed.\n", NTE_BAD_HASH_STATE),
               Line("Error [%d] CryptAcquireConext failed.\n", NTE_BAD_FLAGS)}),
        log.Lines());
}

TEST(CngFailures, EachIsLoggedWithItsStatus) {
    const CngLibrary library;
    ByteBuffer digest;
    UnitLog log;
    EXPECT_FALSE(library.OpenAlgorithm(L"no such algorithm", 0));
    CngHash orphan(library, nullptr, nullptr);
    EXPECT_FALSE(orphan.Finish(32, digest));
    const OwnedCngAlgorithm sha256 = library.OpenAlgorithm(BCRYPT_SHA256_ALGORITHM, 0);
    CngHash hash(library, sha256.get(), nullptr);
    EXPECT_FALSE(hash.Finish(31, digest));
    EXPECT_TRUE(digest.Empty());
    const Lines lines = log.Lines();
    const char* calls[] = {"BCryptOpenAlgorithmProvider", "BCryptGetProperty", "BCryptFinishHash"};
    ASSERT_EQ(std::size(calls), lines.size());
    for (size_t i = 0; i < lines.size(); ++i) {  // which status it is depends on the system
        EXPECT_EQ(0u, lines[i].find("**** Error 0xc00000"));
        EXPECT_EQ(lines[i].substr(21), std::string(" returned by ") + calls[i] + "\n");
    }
}

TEST(FileHash, HashesAWholeFileOrSaysWhyNot) {
    ByteBuffer digest;
    UnitLog log;
    EXPECT_FALSE(CapiHashFile("no such file", digest));
    EXPECT_EQ(Lines{Line("Error [%d] opening file no such file.\n", ERROR_FILE_NOT_FOUND)},
              log.Lines());
    std::FILE* file = std::fopen("file_hash_test.bin", "wb");
    ASSERT_NE(nullptr, file);
    for (int i = 0; i < 5000; ++i) std::fputc('a', file);
    std::fclose(file);
    EXPECT_TRUE(CapiHashFile("file_hash_test.bin", digest));
    std::remove("file_hash_test.bin");
    // Computed with md5sum.
    EXPECT_EQ(Hex("7aaa7dec709fa4fa82f3746abfd80bdb"), ToBytes(digest));
}

}  // namespace
}  // namespace vndiscover
