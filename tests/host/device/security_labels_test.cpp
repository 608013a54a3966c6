#include "device/security_labels.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

using Label = std::optional<std::string>;

// The module would take any other text for "none" and send unprotected requests.
TEST(SecurityLabels, AcceptCommonSpellingsOnly) {
    const std::pair<Label, std::vector<const char*>> auth[] = {
        {"MD5", {"MD5", "md5"}},
        {"SHA1", {"SHA", "sha-1", "SHA1", "HMAC-SHA-1"}},
        {"SHA-2(224)", {"SHA-224"}},
        {"SHA-2(256)", {"sha2-256", "SHA256"}},
        {"SHA-2(384)", {"SHA-2(384)"}},
        {"SHA-2(512)", {"sha_512"}},
        {{}, {"", "none", "SHA3", "SHA-2", "MD4", "sha25"}}};
    const std::pair<Label, std::vector<const char*>> priv[] = {
        {"AES", {"aes", "AES-128", "aes128"}},
        {"DES", {"DES", "des", "DES-CBC"}},
        {{}, {"", "AES-192", "AES256", "3DES", "SHA1"}}};
    for (const auto& [label, texts] : auth) {
        for (const char* text : texts) EXPECT_EQ(label, AuthLabel(text)) << text;
    }
    for (const auto& [label, texts] : priv) {
        for (const char* text : texts) EXPECT_EQ(label, PrivLabel(text)) << text;
    }
}

}  // namespace
}  // namespace vndiscover::host
