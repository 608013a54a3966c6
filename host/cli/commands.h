// The commands of the program. Each adds itself to the command line and runs while it is parsed,
// leaving the process's exit code in `exitCode`. Wrong usage that is found only then is thrown as
// CLI::ValidationError.
#pragma once

#include <CLI/CLI.hpp>
#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "device/security.h"
#include "model/printer/report_text.h"
#include "platform/console.h"
#include "values/exit_code.h"
#include "values/oid_text.h"

namespace vndiscover::host {

// Ends the message of a sweep that found nothing.
constexpr char kDoctorHint[] = ": 'vndiscover doctor' looks for the cause";
constexpr char kNothingSent[] = "no request could be sent";
constexpr char kAskOtherwise[] =
    ". 'vndiscover printers' and 'vndiscover sweep -c public -o sysName.0' ask otherwise";

// Of reports on standard output. What is not for a person's eyes gets words alone.
inline TextStyle OutputStyle() { return {OutputWidth(), HasOutputColours(), IsOutputConsole()}; }

// The status line of a sweep that begins now: "3 s, 2 devices".
std::function<std::string()> StatusOf(const std::atomic<size_t>& count, const char* one,
                                      const char* many);
// Tells at the end of a sweep that it was stopped, or why it found nothing.
void WarnAtEnd(bool isStopped, size_t found, const std::string& nothing);

void AddPrintersCommand(CLI::App& app, int& exitCode);   // printers
void AddSweepCommand(CLI::App& app, int& exitCode);      // sweep
void AddDirectedCommands(CLI::App& app, int& exitCode);  // get, getnext, set, walk, info
void AddPrinterCommand(CLI::App& app, int& exitCode);    // printer
void AddCompareCommand(CLI::App& app, int& exitCode);    // compare
void AddWsdCommand(CLI::App& app, int& exitCode);        // wsd
void AddReachCommands(CLI::App& app, int& exitCode);     // ping, ipv6
void AddDoctorCommand(CLI::App& app, int& exitCode);     // doctor

// main puts it before a negative number after "set", which the parser would take for an option. No
// argument from the system contains it.
constexpr char kNumberMark = '\0';

// For texts that an unset variable of a script would leave empty: "" is wrong usage.
inline CLI::Option* MustNotBeEmpty(CLI::Option* option) {
    return option->check(
        [](const std::string& text) { return text.empty() ? "must not be empty" : ""; }, "");
}

// The SNMPv3 options of several commands.
struct V3Options {
    bool isOn = false;
    std::string user, authProtocol, authPassword, privProtocol, privPassword;
};
void AddV3Options(CLI::App& command, V3Options& options);

// Lets --v3 be given several times, each followed by the options of one user; see UsersOf.
void AllowSeveralUsers(CLI::App& command);
std::vector<V3Options> UsersOf(const CLI::App& command);

// Of the environment: passwords of the first user; those of user 2 end in "_2".
constexpr wchar_t kAuthVariable[] = L"VNDISCOVER_AUTH_PASS";
constexpr wchar_t kPrivVariable[] = L"VNDISCOVER_PRIV_PASS";
std::wstring PasswordVariable(const wchar_t* name, size_t number);

// Checks the options, and takes missing passwords from the environment or prompts for them. Null
// without --v3. `number`: of the user, from 1.
std::shared_ptr<const Security> ResolveSecurity(const V3Options& options, size_t number = 1);

// Throws CLI::ValidationError, which names the argument, if the module cannot encode an SNMPv1
// request of this size. An empty community is the module's own.
const Oid kSystem = {1, 3, 6, 1, 2, 1, 1};  // for a community alone
void CheckRequest(const char* argument, const std::string& community, const Oid& oid,
                  size_t valueSize = 0);

// Adds --format with the command's own enumerators; the first name is the default.
template <class Value>
CLI::Option* AddFormat(CLI::App& command, Value& format,
                       const std::vector<std::pair<std::string, Value>>& names) {
    std::string known;
    for (const auto& name : names) known += (known.empty() ? "" : ", ") + name.first;
    const auto choose = [&format, names, known](const std::string& text) {
        for (const auto& [name, value] : names) {
            if (name != text) continue;
            format = value;
            return;
        }
        throw CLI::ValidationError("--format", "'" + text + "' is not one of " + known);
    };
    return command.add_option_function<std::string>("--format", choose, "Output: " + known)
        ->type_name("FORMAT");
}

}  // namespace vndiscover::host
