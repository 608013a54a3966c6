#include "window/pages/device_pages.h"

#include <algorithm>
#include <array>

#include "model/scan/scan_report.h"
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

std::wstring StateText(const ProtocolLine& line) {
    using State = ProtocolState;
    std::wstring text = Text(IDS_PROTOCOL_ANSWERED + static_cast<unsigned>(line.state));
    const std::wstring note = ToWide(line.note);
    const bool isSilent = line.state == State::kSilent;
    if (note.empty())
        return isSilent && line.kind == SweepKind::kSnmpV3 ? Text(IDS_PROTOCOL_SILENT_V3) : text;
    if (isSilent || line.state == State::kPending) return text;
    const bool isReason = line.state == State::kRefused || line.state == State::kNotAsked;
    return isReason ? note : Text(IDS_PROTOCOL_NOTE, {text, note});
}

TableRows ProtocolRows(const Session& session, const DeviceRow& row) {
    const std::vector<ProtocolLine> lines = session.ProtocolsOf(row);
    TableRows rows;
    for (const ProtocolLine& line : lines) {
        const bool isTwofold = std::any_of(lines.begin(), lines.end(), [&](const auto& other) {
            return other.kind == line.kind && other.useIPv6;
        });
        const std::wstring version = Text(line.useIPv6 ? IDS_PROTOCOL_IPV6 : IDS_PROTOCOL_IPV4);
        std::wstring name = ProtocolName(line.kind);
        if (isTwofold) name.append(L", ").append(version);
        rows.push_back({name, StateText(line)});
    }
    return rows;
}

TableRows InterfaceRows(const Session& session, const DeviceRow& row) {
    TableRows rows;
    for (const Interface& one : session.DeviceOf(row)->facts->interfaces) {
        rows.push_back({ToWide(one.description), ToWide(one.operStatus), ToWide(one.speed),
                        ToWide(one.physicalAddress), ToWide(one.type), ToWide(one.adminStatus)});
    }
    return rows;
}

TableRows AnswerRows(const Session& session, const DeviceRow& row) {
    TableRows rows;
    for (const AnswerLine& line : AnswerLines(session.GetScan(), row.answers)) {
        rows.push_back({ToWide(line.object), ToWide(line.value), ProtocolName(line.kind),
                        ToWide(line.address), LocalTime(line.time)});
    }
    return rows;
}

}  // namespace

const std::vector<DevicePage>& DevicePages() {
    static const std::vector<DevicePage> pages = {
        {IDS_PAGE_SUMMARY, {}, nullptr, false},
        {IDS_PAGE_PROTOCOLS,
         {{IDS_PROTOCOL, 110}, {IDS_PROTOCOL_ANSWER, 200}},
         ProtocolRows,
         false},
        {IDS_PAGE_INTERFACES,
         {{IDS_FACT_DESCRIPTION, 100},
          {IDS_INTERFACE_STATUS, 60},
          {IDS_INTERFACE_SPEED, 95},
          {IDS_INTERFACE_ADDRESS, 120},
          {IDS_INTERFACE_TYPE, 115},
          {IDS_INTERFACE_ADMIN, 90}},
         InterfaceRows,
         false},
        {IDS_PAGE_ANSWERS,
         {{IDS_ANSWER_OBJECT, 170},
          {IDS_FACT_VALUE, 200},
          {IDS_PROTOCOL, 80},
          {IDS_COLUMN_ADDRESS, 100},
          {IDS_CALL_TIME, 140}},
         AnswerRows,
         true},
    };
    return pages;
}

}  // namespace vndiscover::host
