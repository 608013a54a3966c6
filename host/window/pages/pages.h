// The details, the doctor's page and the comparison as facts.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/scan/compare.h"
#include "window/controls/facts_list.h"
#include "window/work/engine.h"
#include "window/work/session.h"

namespace vndiscover::host {

// Of the selected device.
std::vector<Fact> DetailFacts(const Session& session);
// Where a device does not answer.
struct DeviceReport {
    std::string address;
    std::optional<HostDiagnosis> diagnosis;  // empty: not yet known
    std::optional<bool> isOnOwnNetwork;      // see IsOnOwnNetwork
};
// `device`: null for a report on this computer alone.
std::vector<Fact> DoctorFacts(const ComputerReport& report, const DeviceReport* device);
std::vector<Fact> CompareFacts(const std::vector<FoundDevice>& before,
                               const std::vector<FoundDevice>& after);

}  // namespace vndiscover::host
