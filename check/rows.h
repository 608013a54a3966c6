// One function for each section of the report.
#pragma once

#include "check/module.h"
#include "check/report.h"

namespace check {

void RequestRows(Report& report, const Module& module);
void DiscoveryRows(Report& report, Module& module);
void SocketRows(Report& report, bool mayUseNetwork);
void SystemRows(Report& report, const Module& module);
void CryptoRows(Report& report);
// Unloads the module, which must not be loaded by anything else. After "hangs" it must be left
// alone.
void LoadingRows(Report& report, Module& used);
// Sends into every network of this computer.
void NetworkRows(Report& report, const Module& module);

inline std::string Number(int64_t number) { return std::to_string(number); }

}  // namespace check
