// Reads many printers in two rounds: first the state of each, then the rest. It has no threads: one
// loop, or several at the same time under a lock, take jobs and hand in what was read.
//
//   while (auto job = fleet.Next()) fleet.Done(*job, ReadJob(*job, asker));
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "model/printer/printer_facts.h"
#include "model/printer/printer_summary.h"

namespace vndiscover::host {

// A device that takes longer for one request is read after all others.
constexpr int64_t kSlowRequestMs = 3000;

struct FleetDevice {
    std::string address;
    size_t login = 0;        // the caller's number of a community or user
    PrinterAnswers answers;  // read so far
    bool isRead = false;     // or given up: the answers say why
    // Of its state; empty: not read yet, or no printer.
    std::optional<Severity> severity;
};

struct FleetJob {
    size_t device = 0;  // its index
    std::string address;
    size_t login = 0;
    bool isState = true;  // the first round
    bool isLate = false;  // slow requests no longer postpone it
    PrinterAnswers known;
};

struct FleetResult {
    PrinterAnswers answers;
    bool isSlow = false;
};

// Reads what the job is for; blocks.
FleetResult ReadJob(const FleetJob& job, const Asker& asker);

class Fleet {
  public:
    // `known`: variables that need not be requested.
    void Add(std::string address, size_t login, std::map<Oid, Answer> known);

    // Empty: none is left, or the last ones are being done and may leave further ones.
    std::optional<FleetJob> Next();
    void Done(const FleetJob& job, FleetResult result);
    // Takes back a job that could not be tried.
    void Return(const FleetJob& job);
    bool IsOver() const { return running_ == 0 && jobs_.empty() && late_.empty(); }

    const std::vector<FleetDevice>& Devices() const { return devices_; }
    // "state of 29 of 403", then "29 of 403, 3 critical, 12 need attention".
    std::string Progress() const;

  private:
    struct Waiting {
        size_t device;
        bool isState;
    };

    std::vector<FleetDevice> devices_;
    std::deque<Waiting> jobs_, late_;
    size_t running_ = 0;
    size_t states_ = 0;  // known, or given up
};

}  // namespace vndiscover::host
