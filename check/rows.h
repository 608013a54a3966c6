// One function for each section of the report.
#pragma once

#include <future>
#include <optional>

#include "check/module.h"
#include "check/report.h"

namespace check {

// The result of a request to a port where nobody listens, or nothing if somebody does. It takes
// 10 s, so other rows are seen at the same time.
std::future<std::optional<int32_t>> AskClosedPort(const Module& module);
void RequestRows(Report& report, const Module& module,
                 std::future<std::optional<int32_t>> closedPort);
void DiscoveryRows(Report& report, Module& module);
void SocketRows(Report& report, bool mayUseNetwork);
void AdapterRows(Report& report, bool mayUseNetwork);
// Returns how many rules of the firewall name this program; -1: unknown.
int FirewallRows(Report& report);
void RuleRow(Report& report, int before);
void WindowRows(Report& report);
// Starts the two programs beside this one.
void ProgramRows(Report& report, bool mayUseNetwork);
void FileRows(Report& report);
void SystemRows(Report& report, const Module& module);
void CryptoRows(Report& report);
// Unloads the module, which must not be loaded by anything else. After "hangs" it must be left
// alone.
void LoadingRows(Report& report, Module& used);
// Sends into every network of this computer.
void NetworkRows(Report& report, const Module& module);

// The adapter list, read like the module reads it, in so many calls; empty on failure.
using AddressList = std::vector<char>;
AddressList ListAddresses(ULONG family, ULONG flags, ULONG& error, int& calls);

inline std::string Number(int64_t number) { return std::to_string(number); }

}  // namespace check
