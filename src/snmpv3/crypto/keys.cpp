#include "snmpv3/crypto/keys.h"

#include <algorithm>
#include <iterator>

#include "snmpv3/crypto/protocol_codes.h"

namespace vndiscover {
namespace {

constexpr size_t kStretchedBytes = 0x100000;
constexpr uint32_t kUnitBytes = 16384;

// Whole passwords only, so that the unit can be repeated. The hash gets the same bytes as from one
// buffer of 1 MiB, but filling fresh memory of that size would take a good part of the hashing
// time.
ByteBuffer RepeatedPassword(const ByteBuffer& password) {
    ByteBuffer unit = password;
    while (unit.length <= kUnitBytes / 2) unit.Append(unit);
    return unit;
}

bool AreEqual(const ByteBuffer& a, const ByteBuffer& b) {
    return std::equal(a.data, a.data + a.length, b.data, b.data + b.length);
}

}  // namespace

// Empty on failure.
const ByteBuffer& PasswordKeys::KeyOf(CryptoSession& crypto, uint32_t authCode,
                                      const ByteBuffer& password) {
    for (const Entry& entry : entries_) {
        if (!entry.key.Empty() && entry.authCode == authCode && AreEqual(entry.password, password))
            return entry.key;
    }
    Entry& entry = entries_[next_];
    entry.key.Clear();  // without a key the entry is unused, even if something throws below
    entry.authCode = authCode;
    entry.password = password;
    const ByteBuffer unit = RepeatedPassword(password);
    if (crypto.Hash(authCode, {unit.data, unit.length, kStretchedBytes}, entry.key)) {
        next_ = (next_ + 1) % std::size(entries_);
    }
    return entry.key;
}

ByteBuffer PasswordKeys::LocalisedKey(CryptoSession& crypto, uint32_t authCode,
                                      const ByteBuffer& password, const ByteBuffer& engineId) {
    ByteBuffer key;
    if (password.Empty()) return key;
    const ByteBuffer& userKey = KeyOf(crypto, authCode, password);
    if (userKey.Empty()) return key;
    ByteBuffer localised = userKey;
    localised.Append(engineId);
    localised.Append(userKey);
    crypto.Hash(authCode, localised, key);
    return key;
}

ByteBuffer TruncatedHmac(CryptoSession& crypto, uint32_t authCode, const ByteBuffer& key,
                         const uint8_t* message, uint32_t length) {
    ByteBuffer mac;
    if (key.Empty() && authCode <= kAuthSha512) return mac;
    crypto.Hmac(authCode, key, message, length, mac);
    ByteBuffer sent;
    sent.Assign(mac.data, static_cast<int32_t>(std::min(mac.length, MacLength(authCode))));
    return sent;
}

}  // namespace vndiscover
