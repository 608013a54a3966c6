#include "model/scan/device_writer.h"

#include <cjson/cJSON.h>

#include "model/asking/json_request.h"
#include "values/plain_text.h"
#include "values/text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

// Of an SNMPv1 result message, as bytes. Only an OCTET STRING can be longer than 127 bytes.
std::string RawValue(std::string_view value) { return ContentOf(kOctetString, value).bytes; }

std::string AnswerValue(std::string_view value) {
    const JsonItem document = ParseDocument(value);
    const auto answers = AnswersOf(document.get());
    return answers.empty() ? std::string(value) : answers.front().second;
}

}  // namespace

std::string DeviceWriter::OneLine(std::string_view value) const {
    if (kind_ == ValueKind::kRaw) return ShownValue(RawValue(value));
    if (kind_ == ValueKind::kAnswer) return ShownValue(AnswerValue(value));
    const JsonItem document = ParseDocument(value);
    return document ? CompactJson(document.get()) : PlainText(value);
}

std::string DeviceWriter::TableRow(std::string_view address, std::string_view value) const {
    const JsonItem document = kind_ == ValueKind::kDocument ? ParseDocument(value) : nullptr;
    const auto answers = AnswersOf(document.get());
    if (answers.empty()) {
        std::string line = OneLine(value);
        if (line.empty()) {
            line = kind_ == ValueKind::kRaw ? "(no value, or too long for SNMPv1)" : "(no value)";
        }
        return Padded(PlainText(address), AddressWidth()) + line + "\n";
    }
    std::string rows;
    for (const auto& [oid, answer] : answers) {
        rows += Padded(rows.empty() ? PlainText(address) : "", AddressWidth()) +
                Padded(PlainText(oid), 29) + "  " + ShownValue(answer) + "\n";
    }
    return rows;
}

JsonItem DeviceItem(ValueKind kind, std::string_view address, std::string_view value) {
    JsonItem element(cJSON_CreateObject());
    AddText(element.get(), "address", address);
    JsonItem document = kind == ValueKind::kDocument ? ParseDocument(value) : nullptr;
    if (document) {
        cJSON_AddItemToObject(element.get(), "value", document.release());
    } else if (kind == ValueKind::kDocument) {
        AddText(element.get(), "value", value);
    } else {
        const std::string bytes = kind == ValueKind::kAnswer ? AnswerValue(value) : RawValue(value);
        AddText(element.get(), "value", IsPrintable(bytes) ? bytes : ShownValue(bytes));
    }
    return element;
}

std::string DeviceWriter::Row(std::string_view address, std::string_view value) {
    if (format_ == Format::kJson) {
        array_.Add(DeviceItem(kind_, address, value).get());
        return array_.Flush();
    }
    if (format_ == Format::kCsv)
        return CsvCell(PlainText(address)) + "," + CsvCell(OneLine(value)) + "\n";
    const bool needsHead = isFirst_;
    isFirst_ = false;
    const std::string row = TableRow(address, value);
    return needsHead ? Padded("ADDRESS", AddressWidth()) + "VALUE\n" + row : row;
}

std::string DeviceWriter::End() { return format_ == Format::kJson ? array_.Finish() : ""; }

std::string CsvLine(const std::vector<std::string>& cells, const std::string& separator) {
    return JoinedAs(cells, CsvCell, separator) + "\r\n";
}

}  // namespace vndiscover::host
