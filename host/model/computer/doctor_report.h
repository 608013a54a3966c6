// Reports on why no device, or one of them, answers.
#pragma once

#include <optional>
#include <string>

#include "model/asking/host_diagnosis.h"
#include "model/computer/computer_report.h"
#include "model/printer/report.h"

namespace vndiscover::host {

Report ReportOf(const ComputerReport& computer);

// `diagnosis`: empty as long as the device is being asked. `isOnOwnNetwork`: see IsOnOwnNetwork.
Report ReportOf(const std::optional<HostDiagnosis>& diagnosis, std::optional<bool> isOnOwnNetwork);

// "in", "in briefly", "kept out"
const char* PassageText(Passage passage);
// "answered", "no answer", ...
const char* OutcomeText(Outcome outcome);
std::string StepText(const StepResult& step);

}  // namespace vndiscover::host
