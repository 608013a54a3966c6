#include <vndiscover.h>

#include <algorithm>
#include <array>
#include <numeric>

#include "cli/commands.h"
#include "cli/printer_finder.h"
#include "values/object_names.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

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

struct PrintersOptions {
    std::vector<std::string> communities;
    V3Options v3;  // of the last --v3
    bool useIPv6 = false;
    bool isStrict = false;
    LevelLimits limits;
    Format format = Format::kText;
};

std::vector<Login> LoginsOf(const PrintersOptions& options, const std::vector<V3Options>& users) {
    std::vector<Login> logins;
    for (const std::string& community : options.communities) {
        CheckLongestCommunity(community);
        logins.push_back({community, nullptr});
    }
    if (logins.empty()) logins = {{"public", nullptr}, {VN_DEFAULT_COMMUNITY, nullptr}};
    for (size_t number = 1; number <= users.size(); ++number)
        logins.push_back({"", ResolveSecurity(users[number - 1], number)});
    return logins;
}

constexpr size_t kColumns = 5;
using Cells = std::array<std::string, kColumns>;

Cells CellsOf(const PrinterLine& printer) {
    const PrinterSummary& summary = printer.summary;
    const bool isFine = summary.severity == Severity::kFine;
    const std::string unread = printer.problem.empty() ? "" : "(" + printer.problem + ")";
    const std::string state =
        summary.state.empty() ? printer.problem : Joined({summary.state, unread}, " ");
    return {Joined({isFine ? "" : SeverityName(summary.severity), state}, ": "), summary.supply,
            printer.facts.name, printer.facts.model, Joined(printer.addresses)};
}

std::string Cut(const std::string& text, size_t width) {
    if (CharacterCount(text) <= width) return text;
    size_t bytes = 0;
    for (size_t left = width - 2; left > 0; --left)
        bytes += FirstCharacter(std::string_view(text).substr(bytes)).bytes;
    return text.substr(0, bytes) + "..";
}

// One line each, of at most `width` characters if the columns' contents can be cut to it.
std::string PrintersText(const std::vector<PrinterLine>& printers, size_t width) {
    std::vector<Cells> rows = {{"STATE", "LOWEST SUPPLY", "NAME", "MODEL", "ADDRESS"}};
    for (const PrinterLine& printer : printers) rows.push_back(CellsOf(printer));
    std::array<size_t, kColumns> widths = {};
    for (const Cells& row : rows) {
        for (size_t i = 0; i < kColumns; ++i)
            widths[i] = std::max(widths[i], CharacterCount(row[i]));
    }
    // The widest columns are cut; addresses stay whole.
    constexpr size_t kLeast = 8;
    for (size_t sum = std::accumulate(widths.begin(), widths.end(), 2 * (kColumns - 1));
         sum > width; --sum) {
        size_t& widest = *std::max_element(widths.begin(), widths.end() - 1);
        if (widest <= kLeast) break;
        --widest;
    }
    std::string text;
    for (const Cells& row : rows) {
        for (size_t i = 0; i + 1 < kColumns; ++i)
            text += Padded(Cut(row[i], widths[i]), widths[i] + 2);
        text += row[kColumns - 1] + "\n";
    }
    return text;
}

std::string PrintersCsv(const std::vector<PrinterLine>& printers) {
    std::string text =
        "severity,state,lowest supply,name,model,addresses,serial number,location,firmware,"
        "page count,supplies,not read\n";
    for (const PrinterLine& printer : printers) {
        const PrinterFacts& facts = printer.facts;
        const std::vector<std::string> cells = {SeverityName(printer.summary.severity),
                                                printer.summary.state,
                                                printer.summary.supply,
                                                facts.name,
                                                facts.model,
                                                Joined(printer.addresses),
                                                facts.serialNumber,
                                                facts.location,
                                                facts.description,
                                                CountText(facts),
                                                SuppliesText(facts),
                                                UnreadText(printer)};
        text += JoinedAs(cells, CsvCell, ",") + "\n";
    }
    return text;
}

void WarnOf(const PrinterFinder& finder, const std::vector<Login>& logins,
            const std::vector<PrinterLine>& printers, size_t others) {
    const size_t incomplete =
        CountIf(printers, [](const PrinterLine& printer) { return !printer.problem.empty(); });
    if (incomplete > 0)
        Warn("printers that could not be read whole: " + std::to_string(incomplete));
    if (others > 0) Warn("addresses that answered but are no printers: " + std::to_string(others));
    for (const std::string& refusal : finder.Refusals()) Warn(refusal);
    if (finder.IsStopped()) return;
    WarnAtEnd(false, printers.size(),
              finder.WasSent() ? "no printer answered " + JoinedAs(logins, NameOf, " and ") +
                                     " for " + kPrinterObject + kAskAsOthers
                               : kNothingSent);
}

int RunPrinters(const PrintersOptions& options, const std::vector<V3Options>& users) {
    const std::vector<Login> logins = LoginsOf(options, users);
    PrinterFinder finder(logins);
    finder.Run(options.useIPv6);
    if (finder.IsStopped()) Warn("stopped: the list is not complete");
    size_t others = 0;
    const std::vector<PrinterLine> printers = finder.Printers(options.limits, others);
    if (options.format == Format::kJson) Print(PrintersJson(printers));
    if (options.format == Format::kCsv) Print(PrintersCsv(printers));
    if (options.format == Format::kText && !printers.empty())
        Print(PrintersText(printers, OutputWidth(SIZE_MAX)));
    WarnOf(finder, logins, printers, others);
    if (printers.empty()) return finder.WasSent() || finder.IsStopped() ? kNone : kSendFailed;
    const bool isFine = AllOf(printers, [](const PrinterLine& printer) {
        return printer.summary.severity == Severity::kFine && printer.problem.empty();
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
    AddFormat(*command, options->format, {"text", "json", "csv"});
    AddV3Options(*command, options->v3);
    AllowSeveralUsers(*command);
    command->footer(kExamples);
    command->callback(
        [options, command, &exitCode] { exitCode = RunPrinters(*options, UsersOf(*command)); });
}

}  // namespace vndiscover::host
