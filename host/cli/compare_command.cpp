#include <utility>
#include <vector>

#include "cli/commands.h"
#include "cli/scan_keeper.h"
#include "model/printer/report.h"
#include "model/scan/device_merge.h"
#include "model/scan/device_writer.h"
#include "model/scan/scan_report.h"
#include "platform/console.h"

namespace vndiscover::host {
namespace {

constexpr char kExamples[] =
    R"(Compares two files made by --save: shows devices that are new, gone, or changed
in address, name, firmware text, state, errors, alerts or supplies, from one
percentage point. Page counts are shown, but without --page-counts do not count
as differences. A device is identified by its serial number, otherwise by its
MAC address, WS-Discovery endpoint or address. What only one of the files
contains does not count as a change. Nothing is sent.

Examples:
  vndiscover sweep --save monday.json
  vndiscover compare monday.json tuesday.json
  vndiscover compare monday.json tuesday.json --format json

Exit codes: 0 no difference, 1 differences, 2 wrong usage or a file that cannot
be read.)";

struct CompareOptions {
    std::string before, after;
    bool withPageCounts = false;
    Format format = Format::kText;
};

int RunCompare(const CompareOptions& options) {
    std::vector<FoundDevice> before = MakeDevices(LoadScan(options.before, "OLD"));
    Comparison comparison =
        CompareDevices(std::move(before), MakeDevices(LoadScan(options.after, "NEW")));
    comparison.beforeName = options.before;
    comparison.afterName = options.after;
    Print(options.format == Format::kJson ? ComparisonJson(comparison)
                                          : ReportText(ReportOf(comparison), OutputStyle()));
    return comparison.IsEqual(options.withPageCounts) ? kFound : kNone;
}

}  // namespace

void AddCompareCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("compare", "Show what has changed between two scans");
    auto options = std::make_shared<CompareOptions>();
    const auto add = [&](const char* name, std::string& path, const char* help) {
        MustNotBeEmpty(command->add_option(name, path, help)->required());
    };
    add("OLD", options->before, "File of the earlier scan");
    add("NEW", options->after, "File of the later scan");
    command->add_flag("--page-counts", options->withPageCounts,
                      "Count other page counts as differences");
    AddFormat(*command, options->format);
    command->footer(kExamples);
    command->callback([options, &exitCode] { exitCode = RunCompare(*options); });
}

}  // namespace vndiscover::host
