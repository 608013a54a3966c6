#include "snmpv3/codec/security_settings.h"

#include "snmpv3/codec/vx_snmpv3.h"
#include "snmpv3/crypto/protocol_codes.h"
#include "support/secure_wipe.h"
#include "support/text_convert.h"

namespace vndiscover {

SecretText::~SecretText() { SecureWipe(text.data(), text.size()); }

SecuritySettings::SecuritySettings(const SecurityArguments& given)
    : userName_(WideToUtf8(given.userName)),
      authPassword_{WideToUtf8(given.authPassword)},
      privPassword_{WideToUtf8(given.privPassword)},
      useAuth_(given.useAuth != 0),
      usePriv_(given.useAuth != 0 && given.usePriv != 0),
      authCode_(AuthCodeOf(given.authProtocol)),
      privCode_(PrivCodeOf(given.privProtocol)),
      libraries_(useAuth_ ? authCode_ : kAuthNone, usePriv_ ? privCode_ : kPrivNone) {}

bool SecuritySettings::HasUsableName() const { return userName_.size() <= kMaxUserName; }

void SecuritySettings::ApplyTo(VxSNMPv3& request) const {
    request.SetUser(userName_.c_str());
    if (useAuth_) request.SetAuth(authCode_, authPassword_.text.c_str());
    if (usePriv_) request.SetPrivacy(privCode_, privPassword_.text.c_str());
    request.SetFlags(useAuth_, usePriv_);
}

}  // namespace vndiscover
