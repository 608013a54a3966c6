#include "model/scan/answer_lines.h"

#include "values/object_names.h"
#include "values/plain_text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

AnswerLine LineOf(const ScanSweep& sweep, const ScanAnswer& one) {
    AnswerLine line = {"", "", sweep.kind, PlainText(one.address), one.time};
    const Answer& answer = one.answer;
    if (sweep.form == AnswerForm::kVariable) {
        line.object = NameText(answer.oid);
        line.value = FormatNamedValue(answer.oid, answer.type, answer.bytes) + CutNote(answer);
    } else if (sweep.form == AnswerForm::kValue) {
        const Answer text = AnsweredWith(sweep.oid, kOctetString, answer.bytes);
        line.object = NameText(sweep.oid);
        line.value = ShownValue(text.bytes) + CutNote(text);
    } else {
        line.object = sweep.form == AnswerForm::kReply      ? "reply"
                      : sweep.form == AnswerForm::kDocument ? "JSON document"
                                                            : "added by hand";
        line.value = PlainText(answer.bytes);
    }
    return line;
}

}  // namespace

std::vector<AnswerLine> AnswerLines(const Scan& scan, const std::vector<size_t>& answers) {
    std::vector<AnswerLine> lines;
    lines.reserve(answers.size());
    for (const size_t index : answers) {
        const ScanAnswer& answer = scan.answers[index];
        lines.push_back(LineOf(scan.sweeps[answer.sweep], answer));
    }
    return lines;
}

}  // namespace vndiscover::host
