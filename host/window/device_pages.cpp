#include "window/device_pages.h"

#include <array>

#include "model/answer_lines.h"
#include "platform/wide_text.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

// Names of protocols are not translated.
const wchar_t* ProtocolName(SweepKind kind) {
    constexpr std::array<const wchar_t*, 3> kNames = {L"SNMPv1", L"SNMPv3", L"WS-Discovery"};
    return kNames[static_cast<size_t>(kind)];
}

std::wstring ObjectText(const AnswerLine& line) {
    if (line.form == AnswerForm::kDocument) return Text(IDS_ANSWER_DOCUMENT);
    if (line.form == AnswerForm::kReply) return Text(IDS_ANSWER_REPLY);
    return ToWide(line.object);
}

std::wstring ValueText(const AnswerLine& line) {
    const std::wstring value = ToWide(line.value);
    return line.wholeSize ? Text(IDS_ANSWER_CUT, {value, std::to_wstring(*line.wholeSize)}) : value;
}

TableRows AnswerRows(const Session& session, const DeviceRow& row) {
    TableRows rows;
    for (const AnswerLine& line : AnswerLines(session.GetScan(), row.answers)) {
        rows.push_back({ObjectText(line), ValueText(line), ProtocolName(line.kind),
                        ToWide(line.address), LocalTime(line.time)});
    }
    return rows;
}

}  // namespace

const std::vector<DevicePage>& DevicePages() {
    static const std::vector<DevicePage> pages = {
        {IDS_PAGE_SUMMARY, {}, nullptr},
        {IDS_PAGE_ANSWERS,
         {{IDS_ANSWER_OBJECT, 170},
          {IDS_FACT_VALUE, 200},
          {IDS_PROTOCOL, 80},
          {IDS_FACT_ADDRESS, 100},
          {IDS_CALL_TIME, 140}},
         AnswerRows},
    };
    return pages;
}

}  // namespace vndiscover::host
