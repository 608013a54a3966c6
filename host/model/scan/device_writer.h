// Devices as documents: of a sweep, one row for each as it arrives, and of a table of devices.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/scan/device_view.h"
#include "values/json_output.h"

namespace vndiscover::host {

enum class Format { kTable, kJson, kCsv };

// The content of a result message's value.
enum class ValueKind {
    kRaw,       // the value itself
    kDocument,  // the filled-in JSON request
    kAnswer,    // a filled-in request of RequestFor, whose only answer is the value
};

// kAnswer if it is a filled-in request of RequestFor, or looks like one.
ValueKind DocumentKind(std::string_view document);

// A row as JSON.
JsonItem DeviceItem(ValueKind kind, std::string_view address, std::string_view value);

class DeviceWriter {
  public:
    // useIPv6: whether the address column is wider.
    DeviceWriter(Format format, ValueKind kind, bool useIPv6)
        : format_(format), kind_(kind), useIPv6_(useIPv6) {}

    // Each returns the text to print now; lines end in LF. `value` is the text of the result
    // message.
    std::string Row(std::string_view address, std::string_view value);
    // Must be called once, after the last row, even if there was none.
    std::string End();

  private:
    std::string TableRow(std::string_view address, std::string_view value) const;
    std::string OneLine(std::string_view value) const;
    size_t AddressWidth() const { return useIPv6_ ? 27 : 17; }

    Format format_;
    ValueKind kind_;
    bool useIPv6_;
    bool isFirst_ = true;
    JsonArray array_;
};

struct Heading {
    Column column;
    std::string text;
};

// The shown rows as CSV with these columns: UTF-8 with a byte order mark, CR LF, and a line of
// headings. A cell that a spreadsheet would run as a formula starts with an apostrophe.
std::string CsvOf(const DeviceView& view, const std::vector<Heading>& headings);

// The shown rows' answers to SNMP sweeps, in the form of `vndiscover sweep --format json`. A device
// without one, found by WS-Discovery, has an empty value.
std::string JsonOf(const DeviceView& view, const Scan& scan);

}  // namespace vndiscover::host
