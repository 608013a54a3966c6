#pragma once

#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "model/scan/found_device.h"
#include "model/scan/scan.h"

namespace vndiscover::host {

// Groups members that have a common identity: by the strongest key first, unless a stronger one
// distinguishes the groups (see Identity).
class IdentityGroups {
  public:
    // The identities must outlive it.
    explicit IdentityGroups(const std::vector<const Identity*>& members);
    // `mayUnite` gets the first members of two groups, in their order. `onUnited` gets the same,
    // after the two have become one. Both may call First. `merge` names the two members that have a
    // value in common, the later one as its second.
    using MayUnite = std::function<bool(size_t first, size_t second, const Merge& merge)>;
    using OnUnited = std::function<void(size_t first, size_t second, const Merge& merge)>;
    void Unite(const MayUnite& mayUnite, const OnUnited& onUnited);
    size_t First(size_t member);  // of its group
    // Of all members of the group with this first one.
    const Identity& IdentityOf(size_t first) const {
        return members_[first].group ? *members_[first].group : *members_[first].own;
    }

  private:
    struct Member {
        const Identity* own;
        size_t parent;                    // itself if it is the first of a group
        std::optional<Identity> group{};  // if it is, and is not alone: thousands mostly are
    };
    bool AreUnited(const Merge& merge, const MayUnite& mayUnite, const OnUnited& onUnited);

    std::vector<Member> members_;
};

// All answers that one sweep received from one address are of one device. Devices are then merged
// by serial number, MAC address, WS-Discovery endpoint and address, in this order, unless a
// stronger key distinguishes them (see Identity) or a person did (Scan::splits); and what answered
// at an address is merged only with the device that is read there next, or else was last. The same
// scan always gives the same devices, in the order of their first answers.
std::vector<FoundDevice> MakeDevices(const Scan& scan);

// The same, several times a second: only devices with new answers are described again.
class DeviceMaker {
  public:
    std::vector<FoundDevice> Make(const Scan& scan);

  private:
    std::map<std::vector<size_t>, FoundDevice> described_;  // by their answers
};

}  // namespace vndiscover::host
