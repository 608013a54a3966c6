// Reads the variables for a report on a printer from one device.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "model/asking/answer.h"

namespace vndiscover::host {

struct Gap {
    std::string subject;  // "supplies"
    std::string object;   // whose request failed, "prtInputName"; empty: not requested
    std::string reason;   // empty: this kind of reading does not ask for it
};

struct PrinterAnswers {
    std::map<Oid, Answer> values;  // received, by OID
    std::vector<Gap> gaps{};
    bool areGapsKnown = true;               // otherwise a missing value may not have been asked for
    Status lastStatus = Status::kAnswered;  // otherwise why reading ended early
    std::string lastProblem{};              // the same in words; empty: it did not
    bool isStopped = false;                 // by the caller or the time limit
    int64_t spentMs = 0;                    // by this reading
};

// The instances of a column that were received, in their order.
std::vector<Oid> RowsOf(const PrinterAnswers& answers, const Oid& column);

std::vector<uint32_t> ListedPrinters(const PrinterAnswers& answers);

// The state of a printer was asked for, but could not be read.
bool IsStateUnread(const PrinterAnswers& answers);

// Far more than a device needs; one that answers each request just in time would take hours.
constexpr int64_t kMaxReadMs = 120000;

// About 40 objects: a request for each variable, and for the end of each column of a table. Ends
// early if the device falls silent or refuses several in a row. No request is sent after
// kMaxReadMs. `withInterfaces`: three further columns, of the network interfaces.
PrinterAnswers ReadPrinter(const Asker& asker, bool withInterfaces = false);

// Whether the device is a printer, and its state: at most four requests for what is not known, and
// more only if one of them fails.
PrinterAnswers ReadState(const Asker& asker, PrinterAnswers known);

// Adds to the values and gaps of the state what a list of printers shows besides it: names, serial
// number, page count, supplies, firmware, without a serial number the MAC address, and colours if
// no supply's name tells one. About 13 requests, and 6 for each supply.
PrinterAnswers ReadForList(const Asker& asker, PrinterAnswers known);

}  // namespace vndiscover::host
