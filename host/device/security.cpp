#include "device/security.h"

#include <windows.h>

#include "values/text.h"

namespace vndiscover::host {
namespace {

struct Spelling {
    std::string_view folded;
    const char* label;
};
constexpr Spelling kAuthSpellings[] = {{"md5", "MD5"},
                                       {"hmacmd5", "MD5"},
                                       {"sha", "SHA1"},
                                       {"sha1", "SHA1"},
                                       {"hmacsha1", "SHA1"},
                                       {"sha224", "SHA-2(224)"},
                                       {"sha2224", "SHA-2(224)"},
                                       {"sha256", "SHA-2(256)"},
                                       {"sha2256", "SHA-2(256)"},
                                       {"sha384", "SHA-2(384)"},
                                       {"sha2384", "SHA-2(384)"},
                                       {"sha512", "SHA-2(512)"},
                                       {"sha2512", "SHA-2(512)"}};
constexpr Spelling kPrivSpellings[] = {
    {"des", "DES"},    {"cbcdes", "DES"},    {"descbc", "DES"},       {"aes", "AES"},
    {"aes128", "AES"}, {"cfb128aes", "AES"}, {"cfb128aes128", "AES"}, {"aes128cfb", "AES"}};

// Keeps lower-cased letters and digits; everything else is punctuation that varies.
std::string Folded(std::string_view text) {
    std::string folded;
    for (const char letter : Lower(text)) {
        if ((letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9')) folded += letter;
    }
    return folded;
}

template <size_t count>
std::optional<std::string> Find(const Spelling (&spellings)[count], std::string_view text) {
    const std::string folded = Folded(text);
    for (const Spelling& spelling : spellings) {
        if (spelling.folded == folded) return spelling.label;
    }
    return std::nullopt;
}

}  // namespace

Secret::Secret(std::wstring&& text) : text_(text.c_str(), text.c_str() + text.size() + 1) {
    SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t));
    text.clear();
}

Secret::~Secret() {
    if (!text_.empty()) SecureZeroMemory(text_.data(), text_.size() * sizeof(wchar_t));
}

std::optional<std::string> AuthLabel(std::string_view text) { return Find(kAuthSpellings, text); }
std::optional<std::string> PrivLabel(std::string_view text) { return Find(kPrivSpellings, text); }

}  // namespace vndiscover::host
