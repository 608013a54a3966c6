#include "host/security_labels.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

TEST(SecurityLabels, TakeTheCommonSpellings) {
    const std::pair<const char*, const char*> auth[] = {{"MD5", "MD5"},
                                                        {"md5", "MD5"},
                                                        {"SHA", "SHA1"},
                                                        {"sha-1", "SHA1"},
                                                        {"SHA1", "SHA1"},
                                                        {"SHA-224", "SHA-2(224)"},
                                                        {"sha2-256", "SHA-2(256)"},
                                                        {"SHA256", "SHA-2(256)"},
                                                        {"SHA-2(384)", "SHA-2(384)"},
                                                        {"sha_512", "SHA-2(512)"},
                                                        {"HMAC-SHA-1", "SHA1"}};
    for (const auto& [text, label] : auth) EXPECT_EQ(label, AuthLabel(text)) << text;
    for (const char* text : {"aes", "AES-128", "aes128"}) EXPECT_EQ("AES", PrivLabel(text)) << text;
    for (const char* text : {"DES", "des", "DES-CBC"}) EXPECT_EQ("DES", PrivLabel(text)) << text;
}

// The module would take any other text for "none" and send unprotected requests.
TEST(SecurityLabels, RefuseWhatTheModuleDoesNotHave) {
    for (const char* text : {"", "none", "SHA3", "SHA-2", "MD4", "sha25"})
        EXPECT_FALSE(AuthLabel(text)) << text;
    for (const char* text : {"", "AES-192", "AES256", "3DES", "SHA1"})
        EXPECT_FALSE(PrivLabel(text)) << text;
}

}  // namespace
}  // namespace vndiscover::host
