#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/asking/host_diagnosis.h"
#include "model/computer/computer_report.h"
#include "model/printer/printer_facts.h"
#include "model/printer/report.h"
#include "model/scan/compare.h"
#include "values/json_output.h"

namespace vndiscover::host {

enum class Format { kText, kJson, kCsv };

// The content of a result message's value.
enum class ValueKind {
    kRaw,       // the value itself
    kDocument,  // the filled-in JSON request
    kAnswer,    // a filled-in request of RequestFor, whose only answer is the value
};

struct SweepValues {
    ValueKind kind = ValueKind::kRaw;
    Oid oid{};              // of the value; of no document
    std::string request{};  // for documents; what has no answer in one is as in the request
    // The octets of an answer in a document, whose text is UTF-8; those of ASCII are the same.
    std::string (*octetsOf)(std::string_view utf8) = [](std::string_view utf8) {
        return std::string(utf8);
    };
    bool isV3 = false;
};

class DeviceWriter {
  public:
    // `useIPv6`: whether the address column is wider.
    DeviceWriter(Format format, bool useIPv6, SweepValues values)
        : format_(format), useIPv6_(useIPv6), values_(std::move(values)) {}

    // Each returns the text to print now; lines end in LF. `value`: of the result message.
    std::string Row(std::string_view address, std::string_view value);
    // Must be called once, after the last row, even if there was none.
    std::string End();

  private:
    std::string TableRow(std::string_view address, std::string_view value) const;
    std::string OneLine(std::string_view value) const;
    const char* NoValue() const;                      // words for a device that answered
    std::string Bytes(std::string_view value) const;  // of no document
    JsonItem Element(std::string_view address, std::string_view value) const;
    void ShowOctets(cJSON* document) const;
    size_t AddressWidth() const { return useIPv6_ ? 27 : 17; }

    Format format_;
    bool useIPv6_;
    SweepValues values_;
    bool isFirst_ = true;
    JsonArray array_;
};

// The output of directed requests: one line or JSON element for each variable, as it arrives.
class VariableWriter {
  public:
    // `withNames`: whether to show OIDs, enumerations and bits as words, and hardware addresses.
    explicit VariableWriter(bool isJson, bool withNames = false)
        : isJson_(isJson), withNames_(withNames) {}
    // The text to print now; lines end in LF. As text, only kAnswered gives a line.
    std::string Row(const Answer& answer);
    // Must be called once, at the end.
    std::string End() { return isJson_ ? array_.Finish() : ""; }

  private:
    bool isJson_;
    bool withNames_;
    JsonArray array_;
};

// A line of a CSV document in UTF-8. See CsvCell.
std::string CsvLine(const std::vector<std::string>& cells, const std::string& separator,
                    const char* lineEnd = "\r\n");
constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";  // before the first line

// Facts for a program: one object in one line, or an array of such lines.

// Members that the device did not give are null.
std::string PrinterJson(const PrinterFacts& facts, const std::string& host);
// An array; what was not asked for in a list is not in it.
std::string PrintersJson(const std::vector<PrinterLine>& printers);
// The same as a CSV document, for a spreadsheet; lines end in LF. See CsvCell.
std::string PrintersCsv(const std::vector<PrinterLine>& printers);
std::string ComputerJson(const ComputerReport& report);
// `isOnOwnNetwork`: see IsOnOwnNetwork.
std::string HostJson(const HostDiagnosis& diagnosis, std::optional<bool> isOnOwnNetwork,
                     const std::string& host);
std::string ComparisonJson(const Comparison& comparison);

}  // namespace vndiscover::host
