// By what answers are known to come from the same device.
#ifndef VNDISCOVER_HOST_MODEL_IDENTITY_H
#define VNDISCOVER_HOST_MODEL_IDENTITY_H

#include <array>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>

namespace vndiscover::host {

// The strongest first.
enum class MergeKey { kSerial, kMac, kEndpoint, kAddress };
constexpr std::array<MergeKey, 4> kMergeKeys = {MergeKey::kSerial, MergeKey::kMac,
                                                MergeKey::kEndpoint, MergeKey::kAddress};

// A value that this many devices claim, each told apart from the others, names none of them.
constexpr size_t kMaxClaims = 16;

// "serial number", "MAC address", "WS-Discovery endpoint", "address".
const char* KeyName(MergeKey key);

class Identity {
  public:
    // A value that tells nothing is left out: an empty one, or a serial number of X, 0 and
    // punctuation alone, as devices have that were never given one.
    void Add(MergeKey key, const std::string& value);
    void Add(const Identity& other);
    const std::set<std::string>& Of(MergeKey key) const {
        return values_[static_cast<size_t>(key)];
    }
    // Whether a key stronger than `key` is known of both, without a common value: then a common
    // value of `key` does not make them one device. An address may have passed from one device to
    // another, and a print server has one MAC address for several printers.
    bool IsToldApart(const Identity& other, MergeKey key) const;

  private:
    std::array<std::set<std::string>, kMergeKeys.size()> values_;
};

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_IDENTITY_H
