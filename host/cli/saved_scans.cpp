#include "cli/saved_scans.h"

#include <vndiscover.h>

#include <atomic>
#include <set>
#include <stdexcept>

#include "model/scan/device_merge.h"
#include "model/scan/scan_report.h"
#include "platform/saved_file.h"
#include "values/ranges.h"
#include "values/utc_time.h"

namespace vndiscover::host {

void AddSaveOptions(CLI::App& command, SaveOptions& options) {
    CLI::Option* save =
        command.add_option("--save", options.path, "Save the answers to this file, see below");
    MustNotBeEmpty(save->type_name("FILE"));
    command.add_flag("--append", options.append, "Add to the answers in the file")->needs(save);
}

Scan LoadScan(const std::string& path, const std::string& option) {
    std::string problem;
    bool isBroken = false;
    if (auto scan = LoadScan(path, isBroken, problem)) return std::move(*scan);
    throw CLI::ValidationError(option, "'" + path + (isBroken ? "', " : "' ") + problem);
}

namespace {

constexpr char kExamples[] =
    R"(Compares two files made by --save: shows devices that are new, gone, or changed
in address, name, firmware text, state, errors, alerts or supplies, from one
percentage point. Page counts are shown, but without --page-counts do not count
as differences. A device is identified by its serial number, otherwise by its
MAC address, WS-Discovery endpoint or address. What only one of the files
contains does not count as a change, and a device without a reading in both is
counted as such. Nothing is sent.

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
    Comparison comparison = CompareDevices(
        std::move(before), MakeDevices(LoadScan(options.after, "NEW")), options.withPageCounts);
    comparison.beforeName = options.before;
    comparison.afterName = options.after;
    Print(options.format == Format::kJson ? ComparisonJson(comparison)
                                          : ReportText(ReportOf(comparison), OutputStyle()));
    return comparison.IsEqual() ? kFound : kNone;
}

// "monday.json.2"
std::string UnusedPath(const std::string& path) {
    constexpr int kLast = 999;
    int number = 2;
    while (number < kLast && FileExists(path + "." + std::to_string(number))) ++number;
    return path + "." + std::to_string(number);
}

std::optional<std::string> Appended(const std::string& path, const Scan& more,
                                    std::string& problem) {
    try {
        Scan whole = LoadScan(path, "--save");
        const size_t sweeps = whole.sweeps.size();
        whole.sweeps.insert(whole.sweeps.end(), more.sweeps.begin(), more.sweeps.end());
        for (ScanAnswer answer : more.answers) {
            answer.sweep += sweeps;
            whole.answers.push_back(std::move(answer));
        }
        return WriteScan(whole, problem);
    } catch (const CLI::ValidationError& error) {
        problem = error.what();
        return std::nullopt;
    }
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

ScanSaver::ScanSaver(SaveOptions options) : options_(std::move(options)) {
    if (!IsOn()) return;
    std::string problem;
    const bool isEmpty = ReadFileText(options_.path, 0, problem) == "";
    if (FileExists(options_.path) && (options_.append || !isEmpty))
        hasDevices_ = !LoadScan(options_.path, "--save").answers.empty();
    if (!CanReplaceFile(options_.path, problem))
        throw CLI::ValidationError("--save", "'" + options_.path + "' " + problem);
}

void ScanSaver::Begin(SweepKind kind, AnswerForm form, bool useIPv6, Oid oid) {
    if (!IsOn()) return;
    const auto save = [this] {
        try {
            Save();
        } catch (...) {  // the console that would show it is gone
        }
    };
    if (!guard_) guard_.emplace(save);
    const std::lock_guard<std::mutex> lock(mutex_);
    sweepSize_ = 0;
    counts_.clear();
    scan_.sweeps.push_back({kind, form, useIPv6, std::move(oid), UtcNow()});
}

void ScanSaver::Add(const std::string& address, std::string_view bytes) {
    if (IsOn()) AddAnswer({0, "", address, Received(bytes)});
}

// One address may flood half of the room. The rest is for others.
void ScanSaver::AddAnswer(ScanAnswer answer) {
    constexpr size_t kMembers = 128;      // bytes for the members other than the answer itself
    constexpr size_t kManyAnswers = 256;  // all that is read of a device
    const std::lock_guard<std::mutex> lock(mutex_);
    size_t& count = counts_[answer.address];
    const size_t room = count < kManyAnswers ? options_.maxSweepSize : options_.maxSweepSize / 2;
    const size_t size = kMembers + answer.answer.bytes.size();
    if (sweepSize_ + size > room) {
        ++leftOut_;
        return;
    }
    ++count;
    sweepSize_ += size;
    answer.sweep = scan_.sweeps.size() - 1 - answer.sweep;
    answer.time = UtcNow();
    scan_.answers.push_back(std::move(answer));
}

void ScanSaver::AskDevices(const Login& login) {
    if (!IsOn()) return;
    std::set<std::string> addresses;
    for (const ScanAnswer& answer : scan_.answers) {
        if (answer.sweep + 1 == scan_.sweeps.size()) addresses.insert(answer.address);
    }
    const ScanSweep sweep = scan_.sweeps.back();
    // One sweep for devices that were read whole, and one for others.
    for (int count = 0; count < 2; ++count) Begin(sweep.kind, AnswerForm::kVariable, sweep.useIPv6);
    std::atomic<size_t> asked{0};
    size_t whole = 0;
    const SweepWatch watch(StopDiscoverSnmp, [&] {
        return "asking device " + std::to_string(asked) + " of " + std::to_string(addresses.size());
    });
    for (const std::string& address : addresses) {
        if (watch.IsStopped()) break;
        ++asked;
        const Device device(login, address);
        Asker asker = AskerOf(device);
        asker.mayGoOn = [&] { return !watch.IsStopped(); };
        PrinterAnswers read = ReadPrinter(asker);
        const bool isWhole = read.lastStatus == Status::kAnswered;
        whole += isWhole;
        for (auto& [oid, answer] : read.values)
            AddAnswer({isWhole ? size_t{1} : 0, "", address, std::move(answer)});
    }
    EndReadings();
    if (watch.IsStopped()) {
        Warn("stopped: " + std::to_string(whole) + " of " + std::to_string(addresses.size()) +
             " devices were read whole");
    } else if (whole < addresses.size()) {
        Warn("devices that could not be read whole: " + std::to_string(addresses.size() - whole));
    }
}

// Ends the two sweeps of AskDevices.
void ScanSaver::EndReadings() {
    const std::lock_guard<std::mutex> lock(mutex_);
    scan_.sweeps.end()[-2].isComplete = leftOut_ == 0;
    scan_.sweeps.back().isCut = true;
    const size_t last = scan_.sweeps.size() - 1;
    if (!AnyOf(scan_.answers, [&](const ScanAnswer& one) { return one.sweep == last; }))
        scan_.sweeps.pop_back();
}

void ScanSaver::Save() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!IsOn() || isSaved_) return;
    if (scan_.answers.empty() && hasDevices_ && !options_.append) {
        throw std::runtime_error("'" + options_.path +
                                 "' stays as it was: it holds devices, and this run found none");
    }
    const CompletionGuard guard;  // one Ctrl-C may have ended the sweep before
    std::string path = options_.path, note, problem;
    // The file is read again: another run may have added to it meanwhile.
    const bool isAdded = options_.append && FileExists(path);
    auto text = isAdded ? Appended(path, scan_, problem) : std::nullopt;
    if (isAdded && !text) {
        path = UnusedPath(options_.path);
        note = "'" + options_.path + "' stays as it was: " + problem +
               "; this run's answers are in '" + path + "'";
    }
    size_t leftOut = 0;
    if (!text) text = WriteFittingScan(scan_, kMaxScanSize, leftOut, problem);
    if (!text) throw std::runtime_error("the scan is not saved: " + problem);
    if (!ReplaceFileText(path, *text, problem))
        throw std::runtime_error("'" + path + "' " + problem);
    isSaved_ = true;
    leftOut += leftOut_;
    if (leftOut > 0)
        note += (note.empty() ? "'" : "; '") + path + "' lacks " + std::to_string(leftOut) +
                " answers: more came than a scan may have";
    if (!note.empty()) throw std::runtime_error(note);
}

}  // namespace vndiscover::host
