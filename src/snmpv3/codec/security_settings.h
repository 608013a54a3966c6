// The host's security settings for one call.
#pragma once

#include <cstdint>
#include <string>

#include "snmpv3/codec/vx_snmpv3.h"
#include "snmpv3/crypto/crypto.h"

namespace vndiscover {

// As the exports take them. Text may be null.
struct SecurityArguments {
    const wchar_t* userName;
    uint8_t useAuth;
    const wchar_t* authPassword;
    uint8_t usePriv;
    const wchar_t* privPassword;
    const wchar_t* authProtocol;
    const wchar_t* privProtocol;
};

// Text that is wiped on destruction, even if the constructor of its owner throws.
struct SecretText {
    ~SecretText();
    std::string text;
};

// Owns UTF-8 copies, of any length, of the user name and the passwords, and wipes the passwords on
// destruction. Keeps the platform's crypto libraries loaded. Privacy has no effect without
// authentication.
class SecuritySettings {
  public:
    SecuritySettings(const SecurityArguments& given);  // implicit, for braces in the exports

    // Whether a message can carry the user name. If not, nothing is sent: a truncated name could be
    // another user's.
    bool HasUsableName() const;

    // Sets user, protocols, passwords and flags: noAuthNoPriv, authNoPriv or authPriv.
    void ApplyTo(VxSNMPv3& request) const;

  private:
    std::string userName_;
    SecretText authPassword_;
    SecretText privPassword_;
    bool useAuth_;
    bool usePriv_;
    uint32_t authCode_;
    uint32_t privCode_;
    const CryptoLibraries libraries_;
};

}  // namespace vndiscover
