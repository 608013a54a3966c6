// SNMPv3 settings as the exports expect them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vndiscover::host {

// A password, wiped on destruction.
class Secret {
  public:
    Secret() = default;
    explicit Secret(std::wstring&& text);  // wipes `text`
    Secret(Secret&& other) noexcept { text_.swap(other.text_); }
    Secret& operator=(Secret&& other) noexcept {
        text_.swap(other.text_);
        return *this;
    }
    ~Secret();
    const wchar_t* Get() const { return text_.empty() ? L"" : text_.data(); }
    bool IsEmpty() const { return text_.size() < 2; }

  private:
    // With its terminating zero. No string: one that is moved from may keep a short text.
    std::vector<wchar_t> text_;
};

struct Security {
    std::wstring user, authLabel, privLabel;  // of protocols; empty: none
    Secret authPassword, privPassword;
    bool UseAuth() const { return !authLabel.empty(); }
    bool UsePriv() const { return !privLabel.empty(); }
};

struct Protocol {
    const wchar_t *label, *name;  // the module's, and one for a person
    const char* spellings;        // folded, with spaces between them
};
extern const std::vector<Protocol> kAuth, kPriv;

// "sha256", "SHA-256" give "SHA-2(256)". Empty if there is none: the module would read an unknown
// label as "no authentication".
std::optional<std::wstring> LabelOf(const std::vector<Protocol>& protocols, std::string_view text);

constexpr char kAuthProtocols[] = "MD5, SHA1, SHA224, SHA256, SHA384, SHA512";
constexpr char kPrivProtocols[] = "DES, AES";

}  // namespace vndiscover::host
