// Reads the variables for a report on a printer from one device.
#pragma once

#include <cstdint>
#include <initializer_list>
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

// The indexes of the printers that the device lists. Some devices have a printer's tables without
// listing it: then the index is in the first row of the first of `otherwise` that has rows.
std::vector<uint32_t> PrintersOf(const PrinterAnswers& answers,
                                 std::initializer_list<const char*> otherwise = {});

// Whether the state of a printer was asked for, but could not be read.
bool IsStateUnread(const PrinterAnswers& answers);

// Far more than a device needs; one that answers each request just in time would take hours.
constexpr int64_t kMaxReadMs = 120000;

// About 40 objects: a request for each variable, and for the end of each column of a table. Ends
// early if the device falls silent or refuses several in a row. No request is sent after
// kMaxReadMs. `withInterfaces`: three further columns, of the network interfaces.
PrinterAnswers ReadPrinter(const Asker& asker, bool withInterfaces = false);

// Reads whether the device is a printer, and its state. Sends at most four requests for what is not
// known, and more only if one of them fails.
PrinterAnswers ReadState(const Asker& asker, PrinterAnswers known);

// Adds to the values and gaps of the state what else a list of printers shows: names, serial
// number, page count, supplies and firmware; the MAC address if there is no serial number; and
// colours if no supply has one in its name. About 13 requests, and 6 for each supply.
PrinterAnswers ReadForList(const Asker& asker, PrinterAnswers known);

}  // namespace vndiscover::host
