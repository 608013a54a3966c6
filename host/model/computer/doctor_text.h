// The words in which a report on this computer, or on a device, is shown.
#pragma once

#include <string>
#include <vector>

#include "model/asking/host_diagnosis.h"
#include "model/computer/computer_report.h"

namespace vndiscover::host {

// "in", "in briefly", "kept out"
const char* PassageText(Passage passage);
// One line for each port and profile, then the commands that let answers in, indented.
std::vector<std::string> FirewallLines(const FirewallReport& report);

std::string LogText(const LogSwitches& log);

// "answered", "no answer", ...
const char* OutcomeText(Outcome outcome);
// The outcome and its detail.
std::string StepText(const StepResult& step);

// The note on a device that is on none of this computer's networks.
extern const char kElsewhere[];

}  // namespace vndiscover::host
