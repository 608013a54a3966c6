// Reads the variables for a report on a printer from one device.
#ifndef VNDISCOVER_HOST_MODEL_PRINTER_READER_H
#define VNDISCOVER_HOST_MODEL_PRINTER_READER_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "model/answer.h"

namespace vndiscover::host {

// Asks the device for the variable that follows an OID; the call blocks until there is a result.
// See AskerOf in device/device.h.
struct Asker {
    std::function<Answer(const Oid&)> getNext;
    bool isV3 = false;
    std::function<bool()> mayGoOn;   // called before each request; empty: always
    std::function<int64_t()> nowMs;  // for the time limit; empty: the system's clock
};

// A part that is missing from a report, and why.
struct Gap {
    std::string subject;  // "supplies"
    std::string object;   // whose request failed, "prtInputName"; empty: not requested
    std::string reason;
};

struct PrinterAnswers {
    std::map<Oid, Answer> values;  // received, by OID
    std::vector<Gap> gaps;
    Status lastStatus = Status::kAnswered;  // otherwise why reading ended early
    std::string lastProblem;                // the same in words; empty: it did not
    bool isStopped = false;                 // by the caller or the time limit
    int64_t spentMs = 0;                    // of the time limit
};

// The indexes of the printers in the device's hrDeviceTable.
std::vector<uint32_t> ListedPrinters(const PrinterAnswers& answers);

// Far more than a device needs; one that answers each request just in time would take hours.
constexpr int64_t kMaxReadMs = 120000;

// About 35 objects, with one request for each variable and one for the end of each column of a
// table. Ends early if the device falls silent or refuses; an unreadable answer loses its row only.
// No request is sent after kMaxReadMs.
PrinterAnswers ReadPrinter(const Asker& asker);

// The same for the objects that identify a device or are compared between scans, about 10.
PrinterAnswers ReadIdentity(const Asker& asker);

// Adds what ReadPrinter does not read of the device's interfaces, 3 columns; see interfaces.h. Asks
// nothing if the reading before ended early, and shares its time limit.
PrinterAnswers ReadInterfaces(const Asker& asker, PrinterAnswers printer);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_PRINTER_READER_H
