#include "model/scan/answer_lines.h"

#include "values/object_names.h"
#include "values/plain_text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

AnswerLine LineOf(const ScanSweep& sweep, const ScanAnswer& one) {
    const Answer& answer = one.answer;
    AnswerLine line;
    line.time = one.time;
    line.kind = sweep.kind;
    line.form = sweep.form;
    line.address = PlainText(one.address);
    if (sweep.form == AnswerForm::kVariable) {
        line.object = NameText(answer.oid);
        line.value = FormatNamedValue(answer.oid, answer.type, answer.bytes);
        if (answer.wholeSize > answer.bytes.size()) line.wholeSize = answer.wholeSize;
    } else if (sweep.form == AnswerForm::kValue) {
        const Content content = ContentOf(kOctetString, answer.bytes);
        line.object = NameText(sweep.oid);
        line.value = ShownValue(content.bytes);
        if (content.wholeSize > content.bytes.size()) line.wholeSize = content.wholeSize;
    } else {
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
