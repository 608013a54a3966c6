// Whether what is known of a device still holds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/printer/printer_summary.h"
#include "model/scan/found_device.h"
#include "model/scan/protocols.h"

namespace vndiscover::host {

// The scan's devices without those that its last search missed.
std::vector<FoundDevice> PresentDevices(const Scan& scan);

struct Standing {
    enum class Kind {
        kNeverRead,
        kBeingRead,
        kRead,
        kIncomplete,  // it fell silent meanwhile, or was stopped; the note says which
        kNoAnswer,    // to any question of its reading
        kRefused,     // the note says why
        kMissed,      // it did not answer the last search, though it had answered an earlier one
    };
    Kind kind = Kind::kNeverRead;
    std::string lastAnswer;  // UTC, as in ScanAnswer; empty: none yet
    std::string note;
    // Whether the state that was read last may still be told as the device's.
    bool Holds() const {
        return kind != Kind::kMissed && kind != Kind::kNoAnswer && kind != Kind::kRefused;
    }
    bool operator==(const Standing& other) const;
};

// The last search that has ended, and what it asked.
class LastSearch {
  public:
    LastSearch() = default;
    // `isSearching`: the scan's last search is still running.
    LastSearch(const Scan& scan, bool isSearching);
    bool HasMissed(const Scan& scan, const FoundDevice& device) const;

  private:
    size_t number_ = 0;                 // 0: there was none
    size_t first_ = SIZE_MAX;           // the first of its sweeps
    std::vector<ScanSweep> questions_;  // its sweeps that ran to their end
};

// `reading`: the device's last one; null: there was none.
Standing StandingOf(const Scan& scan, const FoundDevice& device, const Reading* reading,
                    bool isBeingRead, const LastSearch& search);

// For a list: "door open", "no answer since 21:10", "never read", "being read", "no answer",
// "refused: ...", "no such value", "idle (incomplete, no answer after 12 s)".
std::string StateText(const Standing& standing, const PrinterSummary& summary);

// "door open, as of 21:10". `read`: when it was read, UTC.
std::string StateLine(const Standing& standing, const PrinterSummary& summary,
                      const std::string& read);

// "21:10", or with its date if that is another day. Local time; empty if `utc` is no time.
std::string ShortTime(const std::string& utc);

}  // namespace vndiscover::host
