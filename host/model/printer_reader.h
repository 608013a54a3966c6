// Reads from one device what a report on a printer needs.
#ifndef VNDISCOVER_HOST_MODEL_PRINTER_READER_H
#define VNDISCOVER_HOST_MODEL_PRINTER_READER_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "model/answer.h"

namespace vndiscover::host {

// How to ask the device for the variable that follows an OID; the call blocks until it knows. See
// AskerOf in device/device.h.
struct Asker {
    std::function<Answer(const Oid&)> getNext;
    bool isV3 = false;
    std::function<bool()> mayGoOn;  // asked before each request; empty: always
};

// What is missing from a report, and why.
struct Gap {
    std::string subject;  // "supplies"
    std::string object;   // what was asked for when it failed, "prtInputName"; empty: not asked for
    std::string reason;
};

struct PrinterAnswers {
    std::map<Oid, Answer> values;  // variables that came, by their OIDs
    std::vector<Gap> gaps;
    Status lastStatus = Status::kAnswered;  // why the reading ended early; kAnswered: it did not
};

// The indexes of the printers in the device's hrDeviceTable.
std::vector<uint32_t> ListedPrinters(const PrinterAnswers& answers);

// About 35 objects, one request for each variable and one for the end of each column of a table. A
// device that falls silent or refuses is not asked any further; an answer that cannot be read costs
// that row alone.
PrinterAnswers ReadPrinter(const Asker& asker);

// Likewise, only what a device is known by and compared by: about 10 objects.
PrinterAnswers ReadIdentity(const Asker& asker);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_PRINTER_READER_H
