#include "snmpv3/codec/security_settings.h"

#include "snmpv3/codec/vx_snmpv3.h"
#include "snmpv3/crypto/protocol_codes.h"
#include "support/secure_wipe.h"
#include "support/text_convert.h"

namespace vndiscover {
namespace {

void WipeText(std::string& text) { SecureWipe(text.data(), text.size()); }

}  // namespace

SecuritySettings::SecuritySettings(const wchar_t* userName, uint8_t useAuth,
                                   const wchar_t* authPassword, uint8_t usePriv,
                                   const wchar_t* privPassword, const wchar_t* authProtocol,
                                   const wchar_t* privProtocol)
    : userName_(WideToUtf8(userName)),
      authPassword_(WideToUtf8(authPassword)),
      privPassword_(WideToUtf8(privPassword)),
      useAuth_(useAuth != 0),
      usePriv_(useAuth != 0 && usePriv != 0),
      authCode_(AuthCodeOf(authProtocol)),
      privCode_(PrivCodeOf(privProtocol)) {}

SecuritySettings::~SecuritySettings() {
    WipeText(authPassword_);
    WipeText(privPassword_);
}

bool SecuritySettings::HasUsableName() const { return userName_.size() <= kMaxUserName; }

void SecuritySettings::ApplyTo(VxSNMPv3& request) const {
    request.SetUser(userName_.c_str());
    if (useAuth_) request.SetAuth(authCode_, authPassword_.c_str());
    if (usePriv_) request.SetPrivacy(privCode_, privPassword_.c_str());
    request.SetFlags(useAuth_, usePriv_);
}

}  // namespace vndiscover
