// Reads many printers in two rounds: first the state of each, then the rest. It has no threads: a
// loop gets jobs from it and returns what was read. Several loops may do so under a lock.
//
//   while (auto job = fleet.Next()) fleet.Done(ReadJob(*job, asker));
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/printer/printer_facts.h"
#include "model/printer/report.h"

namespace vndiscover::host {

// A device that takes longer for one request is read after all others.
constexpr int64_t kSlowRequestMs = 3000;

struct FleetDevice {
    size_t index = 0;  // in the fleet
    std::string address;
    size_t login = 0;                    // the caller's number of a community or user
    PrinterAnswers answers;              // read so far
    bool isState = true;                 // the first round, otherwise the second
    bool isLate = false;                 // was too slow for its turn; may be slow now
    bool isBeingRead = false;            // by a loop
    bool isRead = false;                 // or given up: the answers say why
    std::optional<Severity> severity{};  // of its state; empty: not read yet, or no printer
};

// Reads what the round asks for, and returns the job with the answers. Blocks.
FleetDevice ReadJob(FleetDevice job, const Asker& asker);

class Fleet {
  public:
    // `known`: variables that need not be requested.
    void Add(std::string address, size_t login, std::map<Oid, Answer> known);
    // Empty: no job is left, or the last ones are in progress and may lead to further ones.
    std::optional<FleetDevice> Next();
    void Done(FleetDevice job);
    // For a job that could not be tried: another loop may get it.
    void Return(size_t index) noexcept { devices_[index].isBeingRead = false; }
    bool IsOver() const { return CountRead() == devices_.size(); }

    const std::vector<FleetDevice>& Devices() const { return devices_; }
    size_t CountRead() const;
    // During the first round, how many were asked for their state; later, empty.
    std::optional<size_t> CountStates() const;
    // "state of 29 of 403", then "29 of 403, 3 critical, 12 need attention".
    std::string Progress() const;

  private:
    std::vector<FleetDevice> devices_;
};

}  // namespace vndiscover::host
