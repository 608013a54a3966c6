#include "model/scan/device_merge.h"

#include <algorithm>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "values/ranges.h"

namespace vndiscover::host {
namespace {

// The answers that one sweep received from one address.
struct Contact {
    const FoundDevice* device;  // its description
    std::vector<size_t> apart;  // contacts that no contact of the group may be merged with
    std::list<Merge> merges;    // of the group
};

using Descriptions = std::map<std::vector<size_t>, FoundDevice>;

class Merger {
  public:
    Merger(const Scan& scan, Descriptions& known) : scan_(scan), known_(known) {
        MakeContacts();
        for (const auto& [one, other] : scan.splits) Separate(one, other);
    }

    // Afterwards, the known descriptions are those of these devices.
    std::vector<FoundDevice> Make() {
        std::vector<const Identity*> identities;
        for (const Contact& contact : contacts_) identities.push_back(&contact.device->identity);
        IdentityGroups groups(identities);
        groups.Unite(
            [&](size_t first, size_t second, const Merge& merge) {
                return !AreSplit(groups, first, second) &&
                       !IsOfAnother(groups.IdentityOf(first), merge);
            },
            [&](size_t first, size_t second, const Merge& merge) { Join(first, second, merge); });
        std::vector<FoundDevice> devices = Devices(groups);
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
        std::vector<std::unordered_map<std::string_view, size_t>> known(scan_.sweeps.size());
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
            const std::string& address = scan_.answers[indexes.front()].address;
            if (!scan_.splits.empty()) contactsAt_[address].push_back(contacts_.size());
            contacts_.push_back({&Describe(std::move(indexes)), {}, {}});
            if (IsRead(contacts_.back())) readAt_[address].push_back(contacts_.size() - 1);
        }
    }

    // Separates all that came from the two addresses, later answers too. If the addresses are the
    // same, a person has separated its protocols.
    void Separate(size_t one, size_t other) {
        const std::string &address = scan_.answers[one].address,
                          &otherAddress = scan_.answers[other].address;
        const auto kindOf = [&](size_t answer) {
            return scan_.sweeps[scan_.answers[answer].sweep].kind;
        };
        const bool isOfKinds = address == otherAddress;
        SetApart(contactOf_[one], contactOf_[other]);
        const std::vector<size_t>&firsts = contactsAt_.at(address),
              &seconds = contactsAt_.at(otherAddress);
        // A hostile file has any number of both.
        constexpr size_t kMostPairs = 100000;
        pairs_ += firsts.size() * seconds.size();
        if (pairs_ > kMostPairs || (isOfKinds && kindOf(one) == kindOf(other))) return;
        const auto isOf = [&](size_t contact, size_t answer) {
            const size_t own = contacts_[contact].device->answers.front();
            return !isOfKinds || kindOf(own) == kindOf(answer);
        };
        for (const size_t first : firsts) {
            for (const size_t second : seconds)
                if (isOf(first, one) && isOf(second, other)) SetApart(first, second);
        }
    }

    void SetApart(size_t first, size_t second) {
        contacts_[first].apart.push_back(second);
        contacts_[second].apart.push_back(first);
    }

    void Join(size_t first, size_t second, const Merge& merge) {
        Contact &group = contacts_[first], &joined = contacts_[second];
        const auto answer = [&](size_t contact) {
            return contacts_[contact].device->answers.front();
        };
        group.merges.push_back({merge.key, merge.value, answer(merge.first), answer(merge.second)});
        group.merges.splice(group.merges.end(), joined.merges);
        // The shorter one is added to the longer one: a hostile group may join all others.
        if (group.apart.size() < joined.apart.size()) std::swap(group.apart, joined.apart);
        group.apart.insert(group.apart.end(), joined.apart.begin(), joined.apart.end());
        joined.apart.clear();
    }

    bool AreSplit(IdentityGroups& groups, size_t one, size_t other) const {
        if (contacts_[one].apart.size() > contacts_[other].apart.size()) std::swap(one, other);
        return AnyOf(contacts_[one].apart,
                     [&](size_t contact) { return groups.First(contact) == other; });
    }

    static bool IsRead(const Contact& contact) {
        const Identity& identity = contact.device->identity;
        return !identity.Of(MergeKey::kSerial).empty() || !identity.Of(MergeKey::kMac).empty();
    }

    // What answers at an address is the device that is read there next, or if none is, the one that
    // was read there last; it is not an earlier one.
    bool IsOfAnother(const Identity& former, const Merge& merge) const {
        if (merge.key != MergeKey::kAddress || IsRead(contacts_[merge.second])) return false;
        const auto read = readAt_.find(merge.value);
        if (read == readAt_.end()) return false;
        const auto next = std::upper_bound(read->second.begin(), read->second.end(), merge.second);
        const size_t owner = next != read->second.end() ? *next : read->second.back();
        return former.DiffersByStrongerKey(contacts_[owner].device->identity, MergeKey::kAddress);
    }

    // Whether another device has been read at each of its addresses since.
    bool IsReplaced(const Identity& identity) const {
        const std::set<std::string>& addresses = identity.Of(MergeKey::kAddress);
        return !addresses.empty() && AllOf(addresses, [&](const std::string& address) {
            const auto read = readAt_.find(address);
            return read != readAt_.end() &&
                   identity.DiffersByStrongerKey(contacts_[read->second.back()].device->identity,
                                                 MergeKey::kAddress);
        });
    }

    std::vector<FoundDevice> Devices(IdentityGroups& groups) {
        std::vector<std::vector<size_t>> answers(contacts_.size());  // of groups of several
        for (size_t contact = 0; contact < contacts_.size(); ++contact) {
            const size_t first = groups.First(contact);
            if (first == contact) continue;
            std::vector<size_t>& all = answers[first];
            if (all.empty()) all = contacts_[first].device->answers;
            const std::vector<size_t>& own = contacts_[contact].device->answers;
            all.insert(all.end(), own.begin(), own.end());
        }
        std::vector<FoundDevice> devices;
        for (size_t first = 0; first < contacts_.size(); ++first) {
            if (groups.First(first) != first) continue;
            const Contact& group = contacts_[first];
            FoundDevice& device = devices.emplace_back(*group.device);
            if (!answers[first].empty()) {
                std::sort(answers[first].begin(), answers[first].end());
                device = Describe(std::move(answers[first]));
                // All identities of the device count, even if later answers replaced some of them.
                device.identity = groups.IdentityOf(first);
                device.merges.assign(group.merges.begin(), group.merges.end());
            }
            device.isSeparated = !group.apart.empty();
            device.isReplaced = IsReplaced(device.identity);
        }
        return devices;
    }

    const Scan& scan_;
    Descriptions& known_;
    Descriptions described_;
    std::vector<size_t> contactOf_;  // by answer
    std::vector<Contact> contacts_;  // in the order of their first answers
    size_t pairs_ = 0;               // that were separated
    std::unordered_map<std::string, std::vector<size_t>>
        contactsAt_;  // by address, ascending; for splits
    std::unordered_map<std::string, std::vector<size_t>> readAt_;  // of these, those read there
};

}  // namespace

IdentityGroups::IdentityGroups(const std::vector<const Identity*>& members) {
    members_.reserve(members.size());
    for (const Identity* one : members) members_.push_back({one, members_.size()});
}

size_t IdentityGroups::First(size_t member) {
    while (members_[member].parent != member) {
        members_[member].parent = members_[members_[member].parent].parent;
        member = members_[member].parent;
    }
    return member;
}

void IdentityGroups::Unite(const MayUnite& mayUnite, const OnUnited& onUnited) {
    for (const MergeKey key : kMergeKeys) {
        std::unordered_map<std::string_view, std::vector<size_t>> claims;  // members by value
        for (size_t member = 0; member < members_.size(); ++member) {
            for (const std::string& value : members_[member].own->Of(key)) {
                std::vector<size_t>& others = claims[value];
                Merge merge = {key, value, 0, member};
                const bool isUnited = AnyOf(others, [&](size_t other) {
                    merge.first = other;
                    return AreUnited(merge, mayUnite, onUnited);
                });
                if (!isUnited && others.size() < kMaxClaims) others.push_back(member);
            }
        }
    }
}

// Returns true if they are united now, or were already.
bool IdentityGroups::AreUnited(const Merge& merge, const MayUnite& mayUnite,
                               const OnUnited& onUnited) {
    const auto [first, second] = std::minmax({First(merge.first), First(merge.second)});
    if (first == second) return true;
    if (IdentityOf(first).DiffersByStrongerKey(IdentityOf(second), merge.key) ||
        !mayUnite(first, second, merge))
        return false;
    Member &leader = members_[first], &joined = members_[second];
    for (Member* const one : {&leader, &joined})
        if (!one->group) one->group = *one->own;
    // The smaller one is added to the larger one: a hostile group may join all others.
    if (leader.group->Size() < joined.group->Size()) std::swap(leader.group, joined.group);
    leader.group->Add(*joined.group);
    joined.group.reset();
    joined.parent = first;
    onUnited(first, second, merge);
    return true;
}

std::vector<FoundDevice> DeviceMaker::Make(const Scan& scan) {
    return Merger(scan, described_).Make();
}

std::vector<FoundDevice> MakeDevices(const Scan& scan) { return DeviceMaker().Make(scan); }

}  // namespace vndiscover::host
