// Files of scans: --save and --append save the answers of this run, compare shows what has changed.
#pragma once

#include <mutex>
#include <optional>
#include <unordered_map>

#include "cli/commands.h"
#include "model/scan/scan_file.h"

namespace vndiscover::host {

struct SaveOptions {
    std::string path;  // empty: nothing is saved
    bool append = false;
    size_t maxSweepSize = kMaxScanSize;  // of a sweep's answers, however much room the file has
};
void AddSaveOptions(CLI::App& command, SaveOptions& options);

// Reads the scan in a file. Throws CLI::ValidationError with the option's name.
Scan LoadScan(const std::string& path, const std::string& option);

class ScanSaver {
  public:
    // Throws CLI::ValidationError if the file is neither new, empty nor a scan, or is not writable.
    explicit ScanSaver(SaveOptions options);
    bool IsOn() const { return !options_.path.empty(); }

    // The answers from now on belong to this sweep. From the first one on, a Ctrl-C loses none. If
    // the console closes, they are saved before the system ends the process.
    void Begin(SweepKind kind, AnswerForm form, bool useIPv6, Oid oid = {});
    void Add(const std::string& address, std::string_view bytes);

    // Asks each device that the last sweep found as for a report on a printer. A device takes two
    // minutes at most. Ctrl-C ends it.
    void AskDevices(const Login& login);

    // An empty scan does not replace one with devices. What the file of --append cannot hold is
    // saved in another one. Throws std::runtime_error, even if only some answers are left out. Does
    // nothing if the answers were saved before, since the console closes.
    void Save();

  private:
    void EndReadings();
    void AddAnswer(ScanAnswer answer);  // its sweep: 0 is the last one, 1 the one before

    SaveOptions options_;
    bool hasDevices_ = false;  // the file
    Scan scan_;                // of this run
    size_t sweepSize_ = 0;
    std::unordered_map<std::string, size_t> counts_;  // of the sweep's answers, by address
    size_t leftOut_ = 0;
    bool isSaved_ = false;
    std::mutex mutex_;  // of the scan
    std::optional<CompletionGuard> guard_;
};

}  // namespace vndiscover::host
