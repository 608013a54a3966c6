// The details, the doctor's page and the comparison as facts.
#ifndef VNDISCOVER_HOST_WINDOW_PAGES_H
#define VNDISCOVER_HOST_WINDOW_PAGES_H

#include <vector>

#include "model/compare.h"
#include "window/engine.h"
#include "window/facts_list.h"
#include "window/session.h"

namespace vndiscover::host {

// Of the selected device.
std::vector<Fact> DetailFacts(const Session& session);
std::vector<Fact> DoctorFacts(const ComputerReport& report);
std::vector<Fact> CompareFacts(const std::vector<FoundDevice>& before,
                               const std::vector<FoundDevice>& after);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_PAGES_H
