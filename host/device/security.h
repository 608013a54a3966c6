// SNMPv3 settings as the exports take them.
#pragma once

#include <string>
#include <utility>
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
    std::wstring user, authLabel, privLabel;  // labels: see security_labels.h
    Secret authPassword, privPassword;
    bool useAuth = false;
    bool usePriv = false;
};

}  // namespace vndiscover::host
