// The output of `vndiscover doctor`.
#ifndef VNDISCOVER_HOST_CLI_DOCTOR_WRITER_H
#define VNDISCOVER_HOST_CLI_DOCTOR_WRITER_H

#include <optional>
#include <string>

#include "model/computer_report.h"
#include "model/host_diagnosis.h"

namespace vndiscover::host {

// Lines end in LF; JSON is one line.
std::string ComputerText(const ComputerReport& report);
std::string ComputerJson(const ComputerReport& report);

// isOnOwnNetwork: see IsOnOwnNetwork.
std::string HostText(const HostDiagnosis& diagnosis, const std::optional<bool>& isOnOwnNetwork);
std::string HostJson(const HostDiagnosis& diagnosis, const std::optional<bool>& isOnOwnNetwork,
                     const std::string& host);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_CLI_DOCTOR_WRITER_H
