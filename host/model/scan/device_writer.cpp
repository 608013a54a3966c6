#include "model/scan/device_writer.h"

#include <cjson/cJSON.h>

#include "model/asking/json_request.h"
#include "values/csv_cell.h"
#include "values/plain_text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

// The value of an SNMPv1 result message as bytes. A message has no type, but only an OCTET STRING
// comes with the size that means "longer than 127 bytes".
std::string RawValue(std::string_view value) { return ContentOf(kOctetString, value).bytes; }

// The only answer in a document of RequestFor.
std::string AnswerValue(std::string_view value) {
    const JsonItem document = ParseDocument(value);
    const auto answers = AnswersOf(document.get());
    return answers.empty() ? std::string(value) : answers.front().second;
}

// `textOf` gives the text of a heading's cell.
template <class TextOf>
std::string CsvLine(const std::vector<Heading>& headings, TextOf textOf) {
    std::string line;
    for (const Heading& heading : headings)
        line += (line.empty() ? "" : ",") + CsvCell(textOf(heading));
    return line + "\r\n";
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

ValueKind DocumentKind(std::string_view document) {
    const JsonItem item = ParseDocument(document);
    const auto answers = AnswersOf(item.get());
    const cJSON* asked = cJSON_GetObjectItem(item.get(), "DiscoverOID");
    const bool isForOne =
        answers.size() == 1 && cJSON_IsString(asked) && answers.front().first == asked->valuestring;
    return isForOne ? ValueKind::kAnswer : ValueKind::kDocument;
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
        return array_.Take();
    }
    if (format_ == Format::kCsv)
        return CsvCell(PlainText(address)) + "," + CsvCell(OneLine(value)) + "\n";
    const bool needsHead = isFirst_;
    isFirst_ = false;
    const std::string row = TableRow(address, value);
    return needsHead ? Padded("ADDRESS", AddressWidth()) + "VALUE\n" + row : row;
}

std::string DeviceWriter::End() { return format_ == Format::kJson ? array_.Finish() : ""; }

std::string CsvOf(const DeviceView& view, const std::vector<Heading>& headings) {
    std::string document =
        "\xEF\xBB\xBF" + CsvLine(headings, [](const Heading& heading) { return heading.text; });
    for (size_t index = 0; index < view.Count(); ++index) {
        const DeviceRow& row = view.Row(index);
        document +=
            CsvLine(headings, [&](const Heading& heading) { return row.Text(heading.column); });
    }
    return document;
}

std::string JsonOf(const DeviceView& view, const Scan& scan) {
    JsonArray array;
    for (size_t index = 0; index < view.Count(); ++index) {
        const std::vector<size_t>& answers = view.Row(index).answers;
        bool isSwept = false;
        for (const size_t at : answers) {
            const ScanAnswer& answer = scan.answers[at];
            const AnswerForm form = scan.sweeps[answer.sweep].form;
            if (form != AnswerForm::kValue && form != AnswerForm::kDocument) continue;
            const std::string& bytes = answer.answer.bytes;
            const ValueKind kind =
                form == AnswerForm::kValue ? ValueKind::kRaw : DocumentKind(bytes);
            array.Add(DeviceItem(kind, answer.address, bytes).get());
            isSwept = true;
        }
        if (isSwept) continue;
        const std::string& address = scan.answers[answers.front()].address;
        array.Add(DeviceItem(ValueKind::kRaw, address, "").get());
    }
    return array.Finish();
}

}  // namespace vndiscover::host
