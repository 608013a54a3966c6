// SNMPv3 settings as the exports take them.
#ifndef VNDISCOVER_HOST_DEVICE_SECURITY_H
#define VNDISCOVER_HOST_DEVICE_SECURITY_H

#include <string>
#include <utility>

namespace vndiscover::host {

// A password: wiped when its owner ends.
class Secret {
  public:
    Secret() = default;
    explicit Secret(std::wstring text) : text_(std::move(text)) {}
    Secret(Secret&& other) noexcept { text_.swap(other.text_); }
    Secret& operator=(Secret&& other) noexcept {
        text_.swap(other.text_);
        return *this;
    }
    ~Secret();
    const wchar_t* Get() const { return text_.c_str(); }
    bool IsEmpty() const { return text_.empty(); }

  private:
    std::wstring text_;
};

struct Security {
    std::wstring user, authLabel, privLabel;  // labels: see security_labels.h
    Secret authPassword, privPassword;
    bool useAuth = false;
    bool usePriv = false;
};

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_DEVICE_SECURITY_H
