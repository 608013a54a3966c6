#include <vndiscover.h>

#include <algorithm>

#include "cli/commands.h"
#include "cli/printer_finder.h"
#include "model/scan/fact_json.h"
#include "platform/console.h"
#include "platform/wide_text.h"
#include "values/object_names.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr char kAskOption[] = "--ask-for-another-process";

constexpr char kExamples[] =
    R"(Sweeps with the communities "public" and "sesame", or those that you give, asks
each printer for its state, then for supplies, serial number, page count and
firmware, and lists the printers, the worst first: critical (it does not print),
attention, unknown (silent, or without a state), fine. --ipv6 sweeps in
addition, and so does each --v3; the SNMPv3 options after it belong to it. The
second user's passwords are in VNDISCOVER_AUTH_PASS_2, VNDISCOVER_PRIV_PASS_2.
A printer that is found in several ways is one line, if it has a serial number
or a MAC address. Several processes of this program read side by side; a printer
that takes over 3 s for a request is read last. Ctrl-C lists what is known then.

Examples:
  vndiscover printers
  vndiscover printers -c public -c office --format csv
  vndiscover printers --v3 -u admin -a SHA256 -x AES --ipv6
  vndiscover printers --v3 -u admin -a SHA256 --v3 -u guest
  vndiscover printers --strict

Exit codes: 0 printers found, 1 none, 2 wrong usage, 3 no request could be sent,
4 with --strict: a printer is not fine.)";

enum class PrintersFormat { kText, kJson, kCsv };

struct PrintersOptions {
    std::vector<std::string> communities;
    V3Options v3;  // of the last --v3
    bool useIPv6 = false;
    bool isStrict = false;
    bool isForOther = false;  // asks devices for the process that started this one
    LevelLimits limits;
    PrintersFormat format = PrintersFormat::kText;
};

std::vector<Login> LoginsOf(const PrintersOptions& options, const std::vector<V3Options>& users) {
    std::vector<Login> logins;
    for (const std::string& community : options.communities) {
        CheckRequest("--community", community, *ParseOidOrName(kPrinterObject));
        logins.push_back({community, nullptr});
    }
    if (logins.empty()) logins = {{"public", nullptr}, {VN_DEFAULT_COMMUNITY, nullptr}};
    for (size_t number = 1; number <= users.size(); ++number) {
        logins.push_back({"", ResolveSecurity(users[number - 1], number)});
        // For the processes that are started with the same command line.
        const Security& user = *logins.back().security;
        const auto pass = [number](const wchar_t* name, const Secret& password) {
            if (!password.IsEmpty())
                SetEnvironmentVariableW(PasswordVariable(name, number).c_str(), password.Get());
        };
        pass(kAuthVariable, user.authPassword);
        pass(kPrivVariable, user.privPassword);
    }
    return logins;
}

std::string AskedText(const std::vector<Login>& logins) {
    std::vector<std::string> names;
    for (const Login& login : logins) names.push_back(NameOf(login));
    return Joined(names, " and ") + " for " + kPrinterObject;
}

// Why the list is empty, or not complete.
void WarnOf(const PrinterFinder& finder, const std::vector<Login>& logins,
            const std::vector<PrinterLine>& printers, size_t others) {
    const auto incomplete =
        std::count_if(printers.begin(), printers.end(),
                      [](const PrinterLine& printer) { return !printer.problem.empty(); });
    if (incomplete > 0)
        Warn("printers that could not be read whole: " + std::to_string(incomplete));
    if (others > 0) Warn("devices that answered but are no printers: " + std::to_string(others));
    if (finder.IsStopped()) return;
    WarnAtEnd(false, printers.size(),
              finder.WasSent() ? "no printer answered " + AskedText(logins) +
                                     ". 'vndiscover printers -c COMMUNITY' and 'vndiscover "
                                     "printers --v3 -u USER' ask otherwise"
                               : kNothingSent);
}

int RunPrinters(const PrintersOptions& options, const std::vector<V3Options>& users) {
    const std::vector<Login> logins = LoginsOf(options, users);
    if (options.isForOther) {
        ServeAskProcess(DirectAsker(logins));
        return kFound;
    }
    PrinterFinder finder(logins, ToWide(kAskOption));
    finder.Run(options.useIPv6);
    if (finder.IsStopped()) Warn("stopped: the list is not complete");
    size_t others = 0;
    const std::vector<PrinterLine> printers = finder.Printers(options.limits, others);
    if (options.format == PrintersFormat::kJson) Print(PrintersJson(printers));
    if (options.format == PrintersFormat::kCsv) Print(PrintersCsv(printers));
    if (options.format == PrintersFormat::kText && !printers.empty())
        Print(PrintersText(printers, OutputWidth(SIZE_MAX)));
    WarnOf(finder, logins, printers, others);
    if (printers.empty()) return finder.WasSent() || finder.IsStopped() ? kNone : kSendFailed;
    const bool isFine = std::all_of(printers.begin(), printers.end(), [](const auto& printer) {
        return printer.summary.severity == Severity::kFine;
    });
    return options.isStrict && !isFine ? kNeedsAttention : kFound;
}

}  // namespace

void AddPrintersCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("printers", "List the printers, the worst first");
    auto options = std::make_shared<PrintersOptions>();
    MustNotBeEmpty(command
                       ->add_option("-c,--community", options->communities,
                                    "Read community; may be given again [public, sesame]")
                       ->type_name("NAME")
                       ->allow_extra_args(false));
    command->add_flag("-6,--ipv6", options->useIPv6, "Also sweep over IPv6 (link-local)");
    command->add_flag("--strict", options->isStrict, "Exit with 4 if a printer is not fine");
    command->add_option("--low", options->limits.low, "Level that needs attention, below [10]")
        ->type_name("PERCENT")
        ->check(CLI::Range(0, 100).description(""));
    AddFormat<PrintersFormat>(*command, options->format,
                              {{"text", PrintersFormat::kText},
                               {"json", PrintersFormat::kJson},
                               {"csv", PrintersFormat::kCsv}});
    AddV3Options(*command, options->v3);
    AllowSeveralUsers(*command);
    command->add_flag(kAskOption, options->isForOther)->group("");
    command->footer(kExamples);
    command->callback(
        [options, command, &exitCode] { exitCode = RunPrinters(*options, UsersOf(*command)); });
}

}  // namespace vndiscover::host
