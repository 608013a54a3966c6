// The keys that identify the device of an answer.
#pragma once

#include <array>
#include <cstddef>
#include <set>
#include <string>

namespace vndiscover::host {

// In descending strength.
enum class MergeKey { kSerial, kMac, kEndpoint, kAddress };
constexpr std::array<MergeKey, 4> kMergeKeys = {MergeKey::kSerial, MergeKey::kMac,
                                                MergeKey::kEndpoint, MergeKey::kAddress};

// A value that this many otherwise distinct devices share identifies none of them.
constexpr size_t kMaxClaims = 16;

const char* KeyName(MergeKey key);

class Identity {
  public:
    // Ignores an empty value, and a serial number of X, 0 and punctuation, a placeholder.
    void Add(MergeKey key, const std::string& value);
    void Add(const Identity& other);
    size_t Size() const;  // of values
    const std::set<std::string>& Of(MergeKey key) const {
        return values_[static_cast<size_t>(key)];
    }
    // Whether both have a key stronger than `key`, but no common value of it. Then a common value
    // of `key` does not make them one device: an address may have passed from one device to
    // another, and a print server has one MAC address for several printers.
    bool DiffersByStrongerKey(const Identity& other, MergeKey key) const;

  private:
    std::array<std::set<std::string>, kMergeKeys.size()> values_;
};

}  // namespace vndiscover::host
