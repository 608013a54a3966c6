#include "model/scan/view_writer.h"

#include "model/scan/device_writer.h"
#include "values/csv_cell.h"

namespace vndiscover::host {
namespace {

// `textOf` gives the text of a heading's cell.
template <class TextOf>
std::string CsvLine(const std::vector<Heading>& headings, TextOf textOf) {
    std::string line;
    for (const Heading& heading : headings)
        line += (line.empty() ? "" : ",") + CsvCell(textOf(heading));
    return line + "\r\n";
}

}  // namespace

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
