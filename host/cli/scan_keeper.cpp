#include "cli/scan_keeper.h"

#include <vndiscover.h>

#include <atomic>
#include <set>
#include <stdexcept>

#include "model/scan/device_merge.h"
#include "platform/console.h"
#include "platform/saved_file.h"
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

ScanKeeper::ScanKeeper(SaveOptions options) : options_(std::move(options)) {
    if (!IsOn()) return;
    std::string problem;
    const bool isEmpty = ReadFileText(options_.path, 0, problem) == "";
    if (FileExists(options_.path) && (options_.append || !isEmpty))
        hasDevices_ = !LoadScan(options_.path, "--save").answers.empty();
    if (!CanReplaceFile(options_.path, problem))
        throw CLI::ValidationError("--save", "'" + options_.path + "' " + problem);
}

void ScanKeeper::Begin(SweepKind kind, AnswerForm form, bool useIPv6, Oid oid) {
    if (!IsOn()) return;
    const auto save = [this] {
        try {
            Save();
        } catch (...) {  // the console that would tell it is gone
        }
    };
    if (!guard_) guard_.emplace(save);
    const std::lock_guard<std::mutex> lock(mutex_);
    sweepSize_ = 0;
    counts_.clear();
    scan_.sweeps.push_back({kind, form, useIPv6, std::move(oid), UtcNow()});
}

void ScanKeeper::Add(const std::string& address, std::string_view bytes) {
    if (!IsOn()) return;
    ScanAnswer answer;
    answer.address = address;
    answer.answer = Received(bytes);
    AddAnswer(std::move(answer));
}

// One address may flood half of the room, but not take it from others.
void ScanKeeper::AddAnswer(ScanAnswer answer) {
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
    answer.sweep = scan_.sweeps.size() - 1;
    answer.time = UtcNow();
    scan_.answers.push_back(std::move(answer));
}

void ScanKeeper::AskDevices(const Login& login) {
    if (!IsOn()) return;
    std::set<std::string> addresses;
    for (const ScanAnswer& answer : scan_.answers) {
        if (answer.sweep + 1 == scan_.sweeps.size()) addresses.insert(answer.address);
    }
    Begin(scan_.sweeps.back().kind, AnswerForm::kVariable, scan_.sweeps.back().useIPv6);
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
        if (read.lastStatus == Status::kAnswered) ++whole;
        for (auto& [oid, answer] : read.values) AddAnswer({0, "", address, std::move(answer)});
    }
    if (whole < addresses.size())
        Warn("devices that could not be read whole: " + std::to_string(addresses.size() - whole));
}

void ScanKeeper::Save() {
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
