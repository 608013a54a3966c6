#include "cli/scan_keeper.h"

#include <vndiscover.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>

#include "model/device_merge.h"
#include "model/scan_file.h"
#include "platform/console.h"
#include "platform/saved_file.h"

namespace vndiscover::host {

void AddSaveOptions(CLI::App& command, SaveOptions& options) {
    CLI::Option* save =
        command.add_option("--save", options.path, "Save the answers to this file, see below");
    MustNotBeEmpty(save->type_name("FILE"));
    command.add_flag("--append", options.append, "Add to the answers in the file")->needs(save);
}

Scan LoadScan(const std::string& path, const std::string& option) {
    std::string problem;
    const auto text = ReadFileText(path, kMaxScanSize, problem);
    if (!text) throw CLI::ValidationError(option, "'" + path + "' " + problem);
    auto scan = ReadScan(*text, problem);
    if (!scan) throw CLI::ValidationError(option, "'" + path + "', " + problem);
    return std::move(*scan);
}

namespace {

void AddTo(Scan& scan, const Scan& more) {
    const size_t sweeps = scan.sweeps.size();
    scan.sweeps.insert(scan.sweeps.end(), more.sweeps.begin(), more.sweeps.end());
    for (ScanAnswer answer : more.answers) {
        answer.sweep += sweeps;
        scan.answers.push_back(std::move(answer));
    }
}

// "monday.json.2"
std::string UnusedPath(const std::string& path) {
    constexpr int kLast = 999;
    int number = 2;
    while (number < kLast && FileExists(path + "." + std::to_string(number))) ++number;
    return path + "." + std::to_string(number);
}

// The scan in the file, if there is one, and this run's.
std::optional<std::string> Appended(const std::string& path, const Scan& more,
                                    std::string& problem) {
    if (!FileExists(path)) return WriteScan(more, problem);
    try {
        Scan whole = LoadScan(path, "--save");
        AddTo(whole, more);
        return WriteScan(whole, problem);
    } catch (const CLI::ValidationError& error) {
        problem = error.what();
        return std::nullopt;
    }
}

void Replace(const std::string& path, const std::string& text) {
    std::string problem;
    if (!ReplaceFileText(path, text, problem))
        throw std::runtime_error("'" + path + "' " + problem);
}

}  // namespace

ScanKeeper::ScanKeeper(SaveOptions options) : options_(std::move(options)) {
    if (!IsOn()) return;
    if (options_.append && FileExists(options_.path)) LoadScan(options_.path, "--save");
    std::string problem;
    if (!CanReplaceFile(options_.path, problem))
        throw CLI::ValidationError("--save", "'" + options_.path + "' " + problem);
}

void ScanKeeper::Begin(SweepKind kind, AnswerForm form, bool useIPv6, Oid oid) {
    if (!IsOn()) return;
    if (!guard_) guard_.emplace();
    scan_.sweeps.push_back({kind, form, useIPv6, std::move(oid), UtcNow()});
}

void ScanKeeper::Add(const std::string& address, std::string_view bytes) {
    if (!IsOn()) return;
    ScanAnswer answer;
    answer.sweep = scan_.sweeps.size() - 1;
    answer.time = UtcNow();
    answer.address = address;
    answer.bytes = bytes;
    scan_.answers.push_back(std::move(answer));
}

void ScanKeeper::AskDevices(Device& device, bool useIPv6) {
    std::vector<std::string> addresses;
    for (const ScanAnswer& answer : scan_.answers) {
        if (answer.sweep + 1 == scan_.sweeps.size()) addresses.push_back(answer.address);
    }
    std::sort(addresses.begin(), addresses.end());
    addresses.erase(std::unique(addresses.begin(), addresses.end()), addresses.end());
    Begin(scan_.sweeps.back().kind, AnswerForm::kVariable, useIPv6);
    std::atomic<size_t> asked{0};
    const SweepWatch watch(StopDiscoverSnmp, [&] {
        return "asking device " + std::to_string(asked) + " of " + std::to_string(addresses.size());
    });
    Asker asker = AskerOf(device);
    asker.mayGoOn = [&] { return !watch.IsStopped(); };
    for (const std::string& address : addresses) {
        if (watch.IsStopped()) break;
        ++asked;
        device.SetHost(address);
        for (auto& [oid, answer] : ReadIdentity(asker).values) {
            Add(address, answer.bytes);
            scan_.answers.back().oid = oid;
            scan_.answers.back().type = answer.type;
            scan_.answers.back().wholeSize = answer.wholeSize;
        }
    }
}

void ScanKeeper::Save() const {
    if (!IsOn()) return;
    const CompletionGuard guard;  // one Ctrl-C may have ended the sweep before
    std::string problem;
    const std::string& path = options_.path;
    // The file is read again: another run may have added to it meanwhile.
    const auto text = options_.append ? Appended(path, scan_, problem) : WriteScan(scan_, problem);
    if (text) return Replace(path, *text);
    const auto own = options_.append ? WriteScan(scan_, problem) : std::nullopt;
    if (!own) throw std::runtime_error("the scan is not saved: " + problem);
    const std::string other = UnusedPath(path);
    Replace(other, *own);
    throw std::runtime_error("'" + path + "' stays as it was: " + problem +
                             "; this run's answers are in '" + other + "'");
}

}  // namespace vndiscover::host
