// The details, the doctor's page and the comparison as facts.
#ifndef VNDISCOVER_HOST_WINDOW_PAGES_H
#define VNDISCOVER_HOST_WINDOW_PAGES_H

#include <optional>
#include <string>
#include <vector>

#include "model/compare.h"
#include "window/engine.h"
#include "window/facts_list.h"
#include "window/session.h"

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

#endif  // VNDISCOVER_HOST_WINDOW_PAGES_H
