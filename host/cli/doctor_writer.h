// The output of `vndiscover doctor`.
#pragma once

#include <optional>
#include <string>

#include "model/asking/host_diagnosis.h"
#include "model/computer/computer_report.h"

namespace vndiscover::host {

// Lines end in LF; JSON is one line.
std::string ComputerText(const ComputerReport& report);
std::string ComputerJson(const ComputerReport& report);

// isOnOwnNetwork: see IsOnOwnNetwork.
std::string HostText(const HostDiagnosis& diagnosis, const std::optional<bool>& isOnOwnNetwork);
std::string HostJson(const HostDiagnosis& diagnosis, const std::optional<bool>& isOnOwnNetwork,
                     const std::string& host);

}  // namespace vndiscover::host
