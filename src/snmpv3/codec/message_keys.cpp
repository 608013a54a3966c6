#include "snmpv3/codec/message_keys.h"

#include "support/debug_log.h"

namespace vndiscover {
namespace {

bool IsKnown(uint32_t authCode) { return authCode >= kAuthMd5 && authCode <= kAuthSha512; }

// SHA-2 hashes of the platform; the module's own SHA-224 is not logged.
bool IsSha2(uint32_t authCode) { return authCode >= kAuthSha256 && authCode <= kAuthSha512; }

void LogNoKey(Direction direction, uint32_t authCode) {
    const int code = static_cast<int>(authCode);
    if (direction == Direction::kEncode) {
        DebugLogA("Not support Authentication protocol:%d\n", code);
    } else {
        DebugLogA("ERROR:not yet supported HASH VALUE:%d\n", code);
    }
}

void LogPrivacyKey(Direction direction, uint32_t authCode, uint32_t privCode) {
    if (privCode == kPrivDes && authCode == kAuthSha1) {
        DebugLogA("=====pkey for privacy password (SHA1) w/ DES===== \n");
    } else if (privCode == kPrivDes && IsSha2(authCode)) {
        DebugLogA("=====akey for authentication password (SHA2)===== \n");  // Kept: the label
    } else if (privCode == kPrivAes && IsSha2(authCode) && direction == Direction::kDecode) {
        DebugLogA("=====In SHA2 for _userSecurityModel._authenticationSecret  AES=====\n");
    }
}

}  // namespace

MessageKeys PrepareKeys(const MessageRecord& message, Direction direction, PasswordKeys& passwords,
                        CryptoSession& crypto) {
    const UsmParameters& usm = message.usm;
    const uint32_t authCode = usm.authProtocol;
    MessageKeys keys;
    if (message.UsesAuth()) {
        if (IsKnown(authCode)) {
            keys.auth = passwords.LocalisedKey(crypto, authCode, usm.authPassword, usm.engineId);
        } else {
            LogNoKey(direction, authCode);
        }
    }
    const bool knownPrivacy = usm.privProtocol == kPrivDes || usm.privProtocol == kPrivAes;
    if (message.UsesPriv() && knownPrivacy && IsKnown(authCode)) {
        LogPrivacyKey(direction, authCode, usm.privProtocol);
        // The privacy key too is localised with the authentication protocol's hash.
        keys.priv = passwords.LocalisedKey(crypto, authCode, usm.privPassword, usm.engineId);
    }
    return keys;
}

}  // namespace vndiscover
