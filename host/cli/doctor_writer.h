// The output of `vndiscover doctor` for a program.
#pragma once

#include <optional>
#include <string>

#include "model/asking/host_diagnosis.h"
#include "model/computer/computer_report.h"

namespace vndiscover::host {

// One line each.
std::string ComputerJson(const ComputerReport& report);

// isOnOwnNetwork: see IsOnOwnNetwork.
std::string HostJson(const HostDiagnosis& diagnosis, const std::optional<bool>& isOnOwnNetwork,
                     const std::string& host);

}  // namespace vndiscover::host
