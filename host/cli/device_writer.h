// What a sweep prints: one row for each device, as it arrives.
#ifndef VNDISCOVER_HOST_CLI_DEVICE_WRITER_H
#define VNDISCOVER_HOST_CLI_DEVICE_WRITER_H

#include <string>
#include <string_view>

#include "values/json_output.h"

namespace vndiscover::host {

enum class Format { kTable, kJson, kCsv };

// What the value of a result message is.
enum class ValueKind {
    kRaw,       // the value itself
    kDocument,  // the filled-in JSON request
    kAnswer,    // a filled-in request made by RequestFor: the value is its one answer
};

class DeviceWriter {
  public:
    // useIPv6: wider address column.
    DeviceWriter(Format format, ValueKind kind, bool useIPv6)
        : format_(format), kind_(kind), useIPv6_(useIPv6) {}

    // Each returns the text to print now; lines end in LF. `value` is the text of the result
    // message.
    std::string Row(std::string_view address, std::string_view value);
    // Call it once, after the last row, also when there was none.
    std::string End();

  private:
    std::string TableRow(std::string_view address, std::string_view value) const;
    std::string JsonRow(std::string_view address, std::string_view value);
    std::string OneLine(std::string_view value) const;
    size_t AddressWidth() const { return useIPv6_ ? 27 : 17; }

    Format format_;
    ValueKind kind_;
    bool useIPv6_;
    bool isFirst_ = true;
    JsonArray array_;
};

// A field in quotes, quotes doubled, as RFC 4180 has it.
std::string CsvField(std::string_view text);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_CLI_DEVICE_WRITER_H
