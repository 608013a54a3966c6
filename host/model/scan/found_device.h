// What the answers of one device say about it.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "model/printer/printer_facts.h"
#include "model/scan/scan.h"
#include "values/json_output.h"

namespace vndiscover::host {

// The keys that identify the device of an answer, in descending strength.
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
    // Whether both have a key that is stronger than `key`, but no common value of it. Then a common
    // value of `key` does not make them one device: an address may have passed from one device to
    // another, and a print server has one MAC address for several printers.
    bool DiffersByStrongerKey(const Identity& other, MergeKey key) const;

  private:
    std::array<std::set<std::string>, kMergeKeys.size()> values_;
};

// Why two answers were merged into one device. To undo it, add the pair to Scan::splits.
struct Merge {
    MergeKey key;
    std::string value;  // of the key, common to both
    size_t first, second;
};

struct FoundDevice {
    std::vector<size_t> answers;  // indexes in Scan::answers, ascending; the first identifies it
    Identity identity;
    std::vector<std::string> types;             // by WS-Discovery, see ProbeMatch
    std::string added;                          // as what a person added it; empty: nobody did
    bool hasVariables = false;                  // was asked after a sweep, and answered
    bool areAlertsKnown = false;                // they were asked for with its state
    bool isReplaced = false;                    // another device is at its addresses now
    bool isSeparated = false;                   // by a person, from one with a common identity
    std::shared_ptr<const PrinterFacts> facts;  // never null; copies of the device share them
    std::vector<Merge> merges;
};

// Combines those of the answers that still hold. Of WS-Discovery replies, only the first 256 count.
FoundDevice DescribeDevice(const Scan& scan, std::vector<size_t> answers);

// Whether WS-Discovery says that it is no printer.
bool IsOtherByType(const FoundDevice& device);

// A short line: "VN LaserPro 410, LP410-0042, 10.77.1.20".
std::string DeviceLine(const FoundDevice& device);

// Adds the members that describe it.
void AddDevice(cJSON* object, const FoundDevice& device);

}  // namespace vndiscover::host
