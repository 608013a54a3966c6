#include "window/pages/details_pane.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <utility>

#include "model/scan/device_view.h"
#include "model/scan/scan_report.h"
#include "platform/wide_text.h"
#include "values/ranges.h"
#include "values/utc_time.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

struct DevicePage {
    unsigned title;  // its string, on the tab
    std::vector<ListColumn> columns;
    std::vector<ListRow> (*rows)(const Session& session, const DeviceRow& row);
};

namespace {

// Not in the string table, since no language translates them.
const wchar_t* ProtocolName(SweepKind kind) {
    constexpr std::array<const wchar_t*, 3> kNames = {L"SNMPv1", L"SNMPv3", L"WS-Discovery"};
    return kNames[static_cast<size_t>(kind)];
}

std::wstring StateText(const ProtocolLine& line, bool hasUser) {
    using State = ProtocolState;
    std::wstring text = Text(IDS_PROTOCOL_ANSWERED + static_cast<unsigned>(line.state));
    const std::wstring note = ToWide(line.note);
    const bool isSilent = line.state == State::kSilent;
    if (note.empty() && line.kind == SweepKind::kSnmpV3) {
        if (isSilent) return Text(IDS_PROTOCOL_SILENT_V3);
        if (line.state == State::kNotAsked && !hasUser) return Text(IDS_PROTOCOL_NO_USER);
    }
    if (note.empty() || isSilent || line.state == State::kPending) return text;
    const bool isReason = line.state == State::kRefused || line.state == State::kNotAsked;
    return isReason ? note : Text(IDS_PROTOCOL_NOTE, {text, note});
}

std::vector<ListRow> ProtocolRows(const Session& session, const DeviceRow& row) {
    const std::vector<ProtocolLine> lines = session.ProtocolsOf(row);
    std::vector<ListRow> rows;
    for (const ProtocolLine& line : lines) {
        std::wstring name = ProtocolName(line.kind);
        if (AnyOf(lines, [&](const auto& one) { return one.kind == line.kind && one.useIPv6; }))
            name += L", " + Text(line.useIPv6 ? IDS_PROTOCOL_IPV6 : IDS_PROTOCOL_IPV4);
        rows.push_back({{name, StateText(line, session.HasUser())}});
    }
    return rows;
}

std::vector<ListRow> InterfaceRows(const Session&, const DeviceRow& row) {
    std::vector<ListRow> rows;
    for (const Interface& one : row.facts->interfaces) {
        // The speed is higher than the device's variable can say.
        constexpr wchar_t kLimit[] = L"over ";
        const std::wstring speed = ToWide(one.speed);
        const bool isLoopback = one.physicalAddress.empty() && one.type == "software loopback";
        const bool isLimit = speed.rfind(kLimit, 0) == 0;
        rows.push_back(
            {{ToWide(one.description), ToWide(one.operStatus), ToWide(one.adminStatus),
              isLoopback ? Text(IDS_NO_PROTOCOL) : ToWide(one.physicalAddress),
              isLimit ? Text(IDS_INTERFACE_LIMIT, {speed.substr(wcslen(kLimit))}) : speed,
              ToWide(one.type)}});
    }
    return rows;
}

std::vector<ListRow> AnswerRows(const Session& session, const DeviceRow& row) {
    std::vector<ListRow> rows;
    for (const AnswerLine& line : AnswerLines(session.GetScan(), row.answers)) {
        rows.push_back({{ToWide(line.object), ToWide(line.value), ProtocolName(line.kind),
                         ToWide(line.address), ToWide(ShortTime(line.time))}});
    }
    return rows;
}

std::vector<ListRow> SummaryRows(const Session& session, const DeviceRow& row) {
    Report report = ReportOf(row, session.GapsOf(row), session.Limits());
    if (row.standing.kind == Standing::Kind::kNeverRead)
        report.emplace_back().Add("", ToUtf8(Text(IDS_NOT_ASKED)));
    return ListRowsOf(report);
}

// In the order of the tabs.
const DevicePage kPages[] = {
    {IDS_PAGE_SUMMARY, {{IDS_FACT_WHAT, 150}, {IDS_FACT_VALUE, 100}}, SummaryRows},
    {IDS_PAGE_PROTOCOLS, {{IDS_PROTOCOL, 110}, {IDS_PROTOCOL_ANSWER, 200}}, ProtocolRows},
    {IDS_PAGE_INTERFACES,
     {{IDS_FACT_DESCRIPTION, 112},
      {IDS_INTERFACE_STATUS, 50},
      {IDS_INTERFACE_ADMIN, 90},
      {IDS_INTERFACE_ADDRESS, 125},
      {IDS_INTERFACE_SPEED, 105},
      {IDS_INTERFACE_TYPE, 115}},
     InterfaceRows},
    {IDS_PAGE_ANSWERS,
     {{IDS_ANSWER_OBJECT, 150},
      {IDS_FACT_VALUE, 200},
      {IDS_PROTOCOL, 80},
      {IDS_COLUMN_ADDRESS, 100},
      {IDS_CALL_TIME, 120}},
     AnswerRows},
};

// Lets the window handle Esc, Tab and Enter, which a field of several lines would handle itself.
LRESULT CALLBACK PlainKeys(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                           DWORD_PTR) {
    if (message == WM_GETDLGCODE)
        return DefSubclassProc(edit, message, 0, 0) & ~(DLGC_WANTALLKEYS | DLGC_HASSETSEL);
    return DefSubclassProc(edit, message, wParam, lParam);
}

}  // namespace

// The tab control is only the strip of tabs. The list, which is the page, is the next control.
void DetailsPane::Create(HWND parent) {
    tabs_ =
        CreateControl(parent, WC_TABCONTROLW, IDS_DETAILS,
                      WS_TABSTOP | WS_CLIPSIBLINGS | TCS_MULTILINE | TCS_RAGGEDRIGHT, IDC_PAGES);
    WPARAM index = 0;
    for (const DevicePage& page : kPages) {
        std::wstring title = Text(page.title);
        TCITEMW tab = {};
        tab.mask = TCIF_TEXT;
        tab.pszText = title.data();
        SendMessageW(tabs_, TCM_INSERTITEMW, index++, reinterpret_cast<LPARAM>(&tab));
    }
    list_.Create(parent, IDC_DETAILS, Text(IDS_PAGE_SUMMARY));
    list_.SetColumns(Page().columns);
    chosen_ = CreateControl(parent, L"EDIT", 0,
                            ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL, IDC_CHOSEN);
    SetWindowSubclass(chosen_, PlainKeys, 1, 0);
}

void DetailsPane::Show() {
    const DeviceRow* row = session_.view.SelectedRow();
    const std::vector<size_t> answers = row ? row->answers : std::vector<size_t>();
    const std::vector<size_t> old = std::exchange(answers_, answers);
    // The rows of another device begin at the top, with none selected. The summary stays as it is
    // scrolled.
    const bool isSame = !old.empty() && !answers.empty() && old.front() == answers.front();
    if (!IsSummary() && !isSame && old != answers) ShowRows({});
    auto rows = row ? Page().rows(session_, *row) : std::vector<ListRow>();
    // Without rows, the text that says why may have changed.
    if (rows != rows_ || rows.empty()) ShowRows(std::move(rows));
}

void DetailsPane::ShowRows(std::vector<ListRow> rows) {
    rows_ = std::move(rows);
    list_.Refresh();
    ShowChosen();
}

const DevicePage& DetailsPane::Page() const {
    return kPages[static_cast<size_t>(std::max(0, TabCtrl_GetCurSel(tabs_)))];
}

bool DetailsPane::IsSummary() const { return Page().rows == SummaryRows; }

void DetailsPane::ShowPage() {
    const DevicePage& page = Page();
    ShowRows({});
    list_.SetName(Text(page.title));
    list_.SetDpi(dpi_);
    list_.SetColumns(page.columns);
    FitLabels();
    Show();
}

void DetailsPane::Place(Placement& placement, const Box& box, int dpi) {
    const bool isNew = std::exchange(dpi_, dpi) != dpi;
    if (isNew) {
        TabCtrl_SetPadding(tabs_, Scaled(6, dpi), Scaled(3, dpi));
        // The control computes its tabs only when its font is set.
        SendMessageW(tabs_, WM_SETFONT, SendMessageW(tabs_, WM_GETFONT, 0, 0), TRUE);
    }
    box_ = box;
    PlaceTabs(placement);
    if (isNew) ShowPage();
    PlaceList(placement);
}

int DetailsPane::TabsHeight() const {
    RECT page = {0, 0, box_.width, box_.height};
    TabCtrl_AdjustRect(tabs_, FALSE, &page);
    return page.top;
}

void DetailsPane::PlaceTabs(Placement& placement) {
    const int height = TabsHeight();
    placement.Move(tabs_, {box_.x, box_.y, box_.width, height});
    inner_ = {box_.x, box_.y + height, box_.width, std::max(0, box_.height - height)};
}

// The whole text of the selected row is below the list, where cells may be cut.
void DetailsPane::PlaceList(Placement& placement) {
    constexpr int kChosenHeight = 68;  // four lines and a space
    const int chosen = std::min(Scaled(kChosenHeight, dpi_), inner_.height / 3);
    const Box list = {inner_.x, inner_.y, inner_.width, inner_.height - chosen};
    const int space = std::min(Scaled(4, dpi_), chosen);
    placement.Move(chosen_, {list.x, list.y + list.height + space, list.width, chosen - space});
    placement.Move(list_.Handle(), list);
    list_.SetDpi(dpi_);
    FitLabels();
}

void DetailsPane::FitLabels() {
    if (!IsSummary()) return;
    const int labels = std::min(Scaled(150, dpi_), inner_.width * 2 / 5);
    ListView_SetColumnWidth(List(), 0, labels);
}

void DetailsPane::ShowChosen() {
    const auto row = static_cast<size_t>(list_.Selected());
    const bool isHeading = row < rows_.size() && IsSummary() && rows_[row].cells[1].empty();
    const std::wstring chosen = isHeading ? L"" : list_.SelectedText();
    ShowWhole(chosen_, list_.Selected() < 0 && !rows_.empty() ? Text(IDS_CHOOSE_ROW) : chosen);
}

void DetailsPane::OnPlaced() {
    // The control arranges its tabs in rows only after it has got its width.
    if (TabsHeight() != inner_.y - box_.y) {
        Placement placement(GetParent(tabs_));
        PlaceTabs(placement);
        PlaceList(placement);
    }
    list_.Fit();
    if (list_.Selected() >= 0) ListView_EnsureVisible(List(), list_.Selected(), FALSE);
    ShowChosen();
}

void DetailsPane::TurnPage(int pages) {
    const int count = TabCtrl_GetItemCount(tabs_);
    TabCtrl_SetCurSel(tabs_, (TabCtrl_GetCurSel(tabs_) + count + pages) % count);
    ShowPage();
}

// Only the page of interfaces may be empty. A reading for the list does not ask for them.
std::wstring DetailsPane::EmptyText() const {
    const DeviceRow* row = session_.view.SelectedRow();
    if (!row) return session_.view.Count() == 0 ? L"" : Text(IDS_NO_SELECTION);
    const Scan& scan = session_.GetScan();
    const bool isReadWhole = AnyOf(row->answers, [&](size_t at) {
        const ScanSweep& sweep = scan.sweeps[scan.answers[at].sweep];
        return sweep.form == AnswerForm::kVariable && sweep.isComplete;
    });
    if (isReadWhole) return Text(IDS_INTERFACES_NONE);
    const Standing::Kind kind = row->standing.kind;
    if (kind == Standing::Kind::kNeverRead || kind == Standing::Kind::kRead)
        return Text(IDS_NOT_ASKED);
    return Text(IDS_INTERFACES_NOT_READ, {ToWide(StateText(row->standing, {}))});
}

void DetailsPane::OnNotify(const NMHDR& header) {
    if (header.idFrom == IDC_PAGES && header.code == TCN_SELCHANGE) ShowPage();
}

}  // namespace vndiscover::host
