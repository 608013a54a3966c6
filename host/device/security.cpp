#include "device/security.h"

#include <vndiscover.h>

#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

// Letters in lower case, and digits. Everything else is punctuation that varies.
std::string Folded(std::string_view text) {
    std::string folded;
    for (const char letter : Lower(text)) {
        if ((letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9')) folded += letter;
    }
    return folded;
}

}  // namespace

Secret::Secret(std::wstring&& text) : text_(text.c_str(), text.c_str() + text.size() + 1) {
    SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t));
    text.clear();
}

Secret::~Secret() {
    if (!text_.empty()) SecureZeroMemory(text_.data(), text_.size() * sizeof(wchar_t));
}

const std::vector<Protocol> kAuth = {
    {VN_AUTH_MD5, L"MD5", "md5 hmacmd5"},           {VN_AUTH_SHA1, L"SHA-1", "sha sha1 hmacsha1"},
    {VN_AUTH_SHA224, L"SHA-224", "sha224 sha2224"}, {VN_AUTH_SHA256, L"SHA-256", "sha256 sha2256"},
    {VN_AUTH_SHA384, L"SHA-384", "sha384 sha2384"}, {VN_AUTH_SHA512, L"SHA-512", "sha512 sha2512"}};
const std::vector<Protocol> kPriv = {
    {VN_PRIV_DES, L"DES", "des cbcdes descbc"},
    {VN_PRIV_AES, L"AES", "aes aes128 cfb128aes cfb128aes128 aes128cfb"}};

std::optional<std::wstring> LabelOf(const std::vector<Protocol>& protocols, std::string_view text) {
    const auto* found = FindIf(protocols, [folded = Folded(text)](const Protocol& protocol) {
        return Contains(SplitText(protocol.spellings, " "), folded);
    });
    return found ? std::optional<std::wstring>(found->label) : std::nullopt;
}

}  // namespace vndiscover::host
