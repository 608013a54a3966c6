#include "model/scan/device_merge.h"

#include <algorithm>
#include <list>
#include <string>
#include <unordered_map>
#include <utility>

#include "values/ranges.h"

namespace vndiscover::host {
namespace {

// The answers that one sweep received from one address.
struct Contact {
    FoundDevice device;
    size_t parent;              // itself if it is the first of a group and holds the group's fields
    Identity group;             // of all contacts of the group
    std::vector<size_t> apart;  // contacts that no contact of the group may be merged with
    std::list<Merge> merges;    // of the group
};

using Descriptions = std::map<std::vector<size_t>, FoundDevice>;

class Merger {
  public:
    Merger(const Scan& scan, Descriptions& known) : scan_(scan), known_(known) {
        MakeContacts();
        for (const auto& [one, other] : scan.splits) {
            const size_t first = contactOf_[one], second = contactOf_[other];
            contacts_[first].apart.push_back(second);
            contacts_[second].apart.push_back(first);
        }
    }

    // Leaves the descriptions of these devices as the known ones.
    std::vector<FoundDevice> Make() {
        for (const MergeKey key : kMergeKeys) MergeBy(key);
        std::vector<FoundDevice> devices = Devices();
        known_ = std::move(described_);
        return devices;
    }

  private:
    const FoundDevice& Describe(std::vector<size_t> answers) {
        if (auto known = known_.extract(answers); !known.empty())
            return described_.insert(std::move(known)).position->second;
        FoundDevice device = DescribeDevice(scan_, answers);
        return described_.try_emplace(std::move(answers), std::move(device)).first->second;
    }

    void MakeContacts() {
        std::vector<std::unordered_map<std::string, size_t>> known(scan_.sweeps.size());
        std::vector<std::vector<size_t>> answers;
        contactOf_.reserve(scan_.answers.size());
        for (size_t i = 0; i < scan_.answers.size(); ++i) {
            const ScanAnswer& answer = scan_.answers[i];
            size_t contact = answers.size();
            if (!answer.address.empty())
                contact = known[answer.sweep].try_emplace(answer.address, contact).first->second;
            if (contact == answers.size()) answers.emplace_back();
            answers[contact].push_back(i);
            contactOf_.push_back(contact);
        }
        contacts_.reserve(answers.size());
        for (auto& indexes : answers) {
            FoundDevice device = Describe(std::move(indexes));
            Identity group = device.identity;
            contacts_.push_back({std::move(device), contacts_.size(), std::move(group), {}, {}});
        }
    }

    size_t First(size_t contact) {
        while (contacts_[contact].parent != contact) {
            contacts_[contact].parent = contacts_[contacts_[contact].parent].parent;
            contact = contacts_[contact].parent;
        }
        return contact;
    }

    void MergeBy(MergeKey key) {
        std::unordered_map<std::string, std::vector<size_t>> claims;  // contacts by value
        for (size_t contact = 0; contact < contacts_.size(); ++contact) {
            for (const std::string& value : contacts_[contact].device.identity.Of(key)) {
                std::vector<size_t>& others = claims[value];
                const bool isMerged =
                    AnyOf(others, [&](size_t other) { return Unite(other, contact, key, value); });
                if (!isMerged && others.size() < kMaxClaims) others.push_back(contact);
            }
        }
    }

    // True if they are now, or already were, one device.
    bool Unite(size_t one, size_t other, MergeKey key, const std::string& value) {
        const auto [first, second] = std::minmax({First(one), First(other)});
        if (first == second) return true;
        Contact& kept = contacts_[first];
        Contact& joined = contacts_[second];
        if (kept.group.DiffersByStrongerKey(joined.group, key) || AreSplit(first, second))
            return false;
        kept.merges.push_back({key, value, contacts_[one].device.answers.front(),
                               contacts_[other].device.answers.front()});
        kept.merges.splice(kept.merges.end(), joined.merges);
        // The smaller one is added to the larger one: a hostile group may join all others.
        if (kept.group.Size() < joined.group.Size()) std::swap(kept.group, joined.group);
        kept.group.Add(std::exchange(joined.group, {}));
        if (kept.apart.size() < joined.apart.size()) std::swap(kept.apart, joined.apart);
        kept.apart.insert(kept.apart.end(), joined.apart.begin(), joined.apart.end());
        joined.apart.clear();
        joined.parent = first;
        return true;
    }

    bool AreSplit(size_t one, size_t other) {
        if (contacts_[one].apart.size() > contacts_[other].apart.size()) std::swap(one, other);
        return AnyOf(contacts_[one].apart, [&](size_t contact) { return First(contact) == other; });
    }

    std::vector<FoundDevice> Devices() {
        std::vector<std::vector<size_t>> answers(contacts_.size());  // of the groups
        for (size_t contact = 0; contact < contacts_.size(); ++contact) {
            const std::vector<size_t>& own = contacts_[contact].device.answers;
            std::vector<size_t>& all = answers[First(contact)];
            all.insert(all.end(), own.begin(), own.end());
        }
        std::vector<FoundDevice> devices;
        for (size_t first = 0; first < contacts_.size(); ++first) {
            if (answers[first].empty()) continue;
            Contact& group = contacts_[first];
            if (answers[first].size() > group.device.answers.size()) {
                std::sort(answers[first].begin(), answers[first].end());
                group.device = Describe(std::move(answers[first]));
                // Keeps all identities of the device, even if later answers replaced some of them.
                group.device.identity = std::move(group.group);
                group.device.merges.assign(group.merges.begin(), group.merges.end());
            }
            devices.push_back(std::move(group.device));
        }
        return devices;
    }

    const Scan& scan_;
    Descriptions& known_;
    Descriptions described_;
    std::vector<size_t> contactOf_;  // by answer
    std::vector<Contact> contacts_;  // in the order of their first answers
};

}  // namespace

std::vector<FoundDevice> DeviceMaker::Make(const Scan& scan) {
    return Merger(scan, described_).Make();
}

std::vector<FoundDevice> MakeDevices(const Scan& scan) { return DeviceMaker().Make(scan); }

}  // namespace vndiscover::host
