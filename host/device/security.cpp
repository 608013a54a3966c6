#include "device/security.h"

#include <windows.h>

#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

struct Protocol {
    const char* label;
    const char* spellings;  // folded, with spaces between them
};
constexpr Protocol kAuth[] = {{"MD5", "md5 hmacmd5"},           {"SHA1", "sha sha1 hmacsha1"},
                              {"SHA-2(224)", "sha224 sha2224"}, {"SHA-2(256)", "sha256 sha2256"},
                              {"SHA-2(384)", "sha384 sha2384"}, {"SHA-2(512)", "sha512 sha2512"}};
constexpr Protocol kPriv[] = {{"DES", "des cbcdes descbc"},
                              {"AES", "aes aes128 cfb128aes cfb128aes128 aes128cfb"}};

// Keeps lower-cased letters and digits; everything else is punctuation that varies.
std::string Folded(std::string_view text) {
    std::string folded;
    for (const char letter : Lower(text)) {
        if ((letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9')) folded += letter;
    }
    return folded;
}

template <size_t count>
std::optional<std::string> Find(const Protocol (&protocols)[count], std::string_view text) {
    const auto* found = FindIf(protocols, [folded = Folded(text)](const Protocol& protocol) {
        return Contains(SplitText(protocol.spellings, " "), folded);
    });
    return found ? std::optional<std::string>(found->label) : std::nullopt;
}

}  // namespace

Secret::Secret(std::wstring&& text) : text_(text.c_str(), text.c_str() + text.size() + 1) {
    SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t));
    text.clear();
}

Secret::~Secret() {
    if (!text_.empty()) SecureZeroMemory(text_.data(), text_.size() * sizeof(wchar_t));
}

std::optional<std::string> AuthLabel(std::string_view text) { return Find(kAuth, text); }
std::optional<std::string> PrivLabel(std::string_view text) { return Find(kPriv, text); }

}  // namespace vndiscover::host
