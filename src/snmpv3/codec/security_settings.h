// The host's security settings for one call.
#pragma once

#include <cstdint>
#include <string>

#include "snmpv3/crypto/keys.h"

namespace vndiscover {

class VxSNMPv3;

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

// Owns UTF-8 copies, of any length, of the user name and the passwords, and the passwords' keys
// once they have been needed; wipes passwords and keys on destruction. Keeps the platform's crypto
// libraries loaded. Privacy has no effect without authentication.
class SecuritySettings {
  public:
    explicit SecuritySettings(const SecurityArguments& given);
    SecuritySettings(const SecuritySettings&) = delete;
    SecuritySettings& operator=(const SecuritySettings&) = delete;

    // Whether a message can carry the user name. If not, nothing is sent: a truncated name could be
    // another user's.
    bool HasUsableName() const;

    // The keys of the passwords, for all messages of the call.
    PasswordKeys& Keys() const { return keys_; }

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
    mutable PasswordKeys keys_;
};

}  // namespace vndiscover
