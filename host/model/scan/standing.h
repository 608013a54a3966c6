// Whether what is known of a device still holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/printer/printer_reader.h"
#include "model/printer/report.h"
#include "model/scan/found_device.h"
#include "model/scan/scan.h"

namespace vndiscover::host {

// Whether a device answered by a protocol, and why not.
enum class ProtocolState {
    kAnswered,
    kNoValue,   // it answered, but does not have what was asked for
    kRefused,   // or its answer could not be read; the note says why
    kPending,   // a sweep that asks it is still running
    kSilent,    // though it was asked
    kNotAsked,  // or the request could not be sent; then the note says so
};

struct ProtocolLine {
    SweepKind kind = SweepKind::kSnmpV1;
    bool useIPv6 = false;
    ProtocolState state = ProtocolState::kNotAsked;
    std::string note;  // on the last reading if it ended early, otherwise empty
};

// The requests to one address by one protocol.
struct Reading {
    std::string address;
    SweepKind kind = SweepKind::kSnmpV1;
    PrinterAnswers end;  // without the values, which are in the scan
    bool hasValues{};    // there were some
    std::string time{};  // of its end, as in ScanAnswer
    bool isStateOnly{};  // the rest is read later
    bool IsRefused() const {
        return end.lastStatus == Status::kRefused || end.lastStatus == Status::kOnlyDiscovered;
    }
};

// A line for each protocol over IPv4; over IPv6 only for those that were used over it, and not for
// a sweep's silence if the device answers otherwise. `answers` are the device's in the scan,
// `readings` those of its addresses, `running` the indexes of sweeps that have not ended. A sweep
// over SNMPv3 shows a refusal as silence: only a reading says why.
std::vector<ProtocolLine> ProtocolsOf(const Scan& scan, const std::vector<size_t>& answers,
                                      const std::vector<Reading>& readings,
                                      const std::vector<size_t>& running);

// The scan's devices without those that are silent since (LastSearches::SilentSince) or replaced.
std::vector<FoundDevice> PresentDevices(const Scan& scan);

struct Standing {
    enum class Kind {
        kNeverRead,
        kBeingRead,
        kRead,
        kIncomplete,  // it fell silent meanwhile, or was stopped; the note says which
        kNoAnswer,    // to any question of its reading
        kRefused,     // the note says why
        kNotFound,    // by the last search, although an earlier one had found it
    };
    Kind kind = Kind::kNeverRead;
    std::string lastAnswer;  // UTC, as in ScanAnswer; empty: none yet
    std::string note;
    bool isStateOnly = false;  // supplies and the rest are of an earlier reading, or not known
    // Whether the state that was read last may still be shown as the device's.
    bool Holds() const {
        return kind != Kind::kNotFound && kind != Kind::kNoAnswer && kind != Kind::kRefused;
    }
    bool operator==(const Standing& other) const;
};

// The last questions of searches that have ended.
class LastSearches {
  public:
    // `isSearching`: the scan's last search is still running.
    LastSearches(const Scan& scan, bool isSearching);
    // Of a device with these answers: when the last search began that asked it and got no answer.
    // Empty: there is none, or it has answered since.
    std::optional<std::string> SilentSince(const Scan& scan,
                                           const std::vector<size_t>& answers) const;

  private:
    struct Question {
        ScanSweep sweep;   // the last one with this question that ran to its end
        size_t first;      // the index of the first sweep of the same search
        std::string time;  // of that first one
    };
    std::vector<Question> questions_;
};

// `reading`: the device's last one; null: there was none.
Standing StandingOf(const Scan& scan, const FoundDevice& device, const Reading* reading,
                    bool isBeingRead, const LastSearches& searches);

// For a list: "door open", "no answer since 21:10", "never read", "being read", "no answer",
// "refused: ...", "no such value", "idle (incomplete, no answer after 12 s)".
std::string StateText(const Standing& standing, const PrinterSummary& summary);
// For a person: with the problem of a supply if that is all that needs attention, "idle, a supply
// is low".
std::string StateCell(const Standing& standing, const PrinterSummary& summary,
                      const PrinterFacts& facts);

// "door open, as of 21:10". `read`: when it was read, UTC.
std::string StateLine(const Standing& standing, const PrinterSummary& summary,
                      const std::string& read);

}  // namespace vndiscover::host
