#include "window/pages/details_pane.h"

#include <algorithm>
#include <utility>

#include "model/scan/scan_report.h"
#include "platform/wide_text.h"
#include "window/controls/dpi.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

// `row`: null if no device is selected.
std::vector<ReportRow> SummaryOf(const Session& session, const DeviceRow* row) {
    const FoundDevice* device = row ? session.DeviceOf(*row) : nullptr;
    Report report;
    if (device) report = ReportOf(*device, *row, session.GapsOf(*row), session.Limits());
    ReportSection note;
    if (!device) note.Add("", ToUtf8(Text(IDS_NO_SELECTION)));
    if (device && row->standing.kind == Standing::Kind::kNeverRead)
        note.Add("", ToUtf8(Text(IDS_NOT_ASKED)));
    report.push_back(std::move(note));
    return RowsOf(report);
}

}  // namespace

// The tab control is only the strip of tabs, and the list of its page is the next control.
void DetailsPane::Create(HWND parent) {
    tabs_ =
        CreateControl(parent, WC_TABCONTROLW, IDS_DETAILS,
                      WS_TABSTOP | WS_CLIPSIBLINGS | TCS_MULTILINE | TCS_RAGGEDRIGHT, IDC_PAGES);
    WPARAM index = 0;
    for (const DevicePage& page : DevicePages()) {
        std::wstring title = Text(page.title);
        TCITEMW tab = {};
        tab.mask = TCIF_TEXT;
        tab.pszText = title.data();
        SendMessageW(tabs_, TCM_INSERTITEMW, index++, reinterpret_cast<LPARAM>(&tab));
    }
    facts_.Create(parent, IDC_DETAILS, Text(IDS_PAGE_SUMMARY));
    table_.Create(parent, IDC_TABLE, L"");
    ShowWindow(table_.Handle(), SW_HIDE);
    chosen_ = CreateControl(parent, L"STATIC", 0, SS_NOPREFIX, IDC_CHOSEN);
    facts_.onSelected = [this] { UpdateLists(); };
}

void DetailsPane::Show() {
    const DeviceRow* row = session_.view.SelectedRow();
    const DevicePage& page = Page();
    const std::vector<size_t> answers = row ? row->answers : std::vector<size_t>();
    const std::vector<size_t> old = std::exchange(answers_, answers);
    if (std::exchange(page_, &page) == &page && page.isOfAnswers && old == answers) return;
    // Another device's table starts at its top, without a selected row.
    if (old.empty() || answers.empty() || old.front() != answers.front()) ShowRows({});
    if (!page.rows) {
        facts_.Show(SummaryOf(session_, row));
        UpdateLists();
        return;
    }
    ShowRows(row ? page.rows(session_, *row) : TableRows());
}

void DetailsPane::ShowRows(TableRows rows) {
    rows_ = std::move(rows);
    table_.Refresh();
    UpdateLists();
}

const DevicePage& DetailsPane::Page() const {
    return DevicePages()[static_cast<size_t>(std::max(0, TabCtrl_GetCurSel(tabs_)))];
}

void DetailsPane::ShowPage() {
    const DevicePage& page = Page();
    const bool hasFocus = GetFocus() == facts_.Handle() || GetFocus() == table_.Handle();
    page_ = nullptr;
    if (page.rows) {
        ShowRows({});
        table_.SetName(Text(page.title));
        table_.SetDpi(dpi_);
        table_.SetColumns(page.columns);
    }
    placed_ = {};  // columns are others, or have other widths
    Show();
    ShowWindow(facts_.Handle(), page.rows ? SW_HIDE : SW_SHOW);
    ShowWindow(table_.Handle(), page.rows ? SW_SHOW : SW_HIDE);
    if (hasFocus) SetFocus(Shown());  // not left to a hidden list
}

void DetailsPane::Place(Placement& placement, const Box& box, int dpi) {
    const bool isNew = std::exchange(dpi_, dpi) != dpi;
    if (isNew) {
        TabCtrl_SetPadding(tabs_, Scaled(6, dpi), Scaled(3, dpi));
        // Only a new font makes the control compute its tabs.
        SendMessageW(tabs_, WM_SETFONT, SendMessageW(tabs_, WM_GETFONT, 0, 0), TRUE);
    }
    box_ = box;
    PlaceTabs(placement);
    if (isNew) ShowPage();
    PlaceLists(placement);
}

int DetailsPane::TabsHeight() const {
    RECT page = {0, 0, box_.width, box_.height};
    TabCtrl_AdjustRect(tabs_, FALSE, &page);
    return page.top;
}

void DetailsPane::PlaceTabs(Placement& placement) {
    const int height = TabsHeight();
    placement.Move(tabs_, {box_.x, box_.y, box_.width, height});
    lists_ = {box_.x, box_.y + height, box_.width, std::max(0, box_.height - height)};
}

// A cell may cut its text, so that of the selected row is below the list.
void DetailsPane::PlaceLists(Placement& placement) {
    constexpr int kChosenHeight = 68;  // four lines and a space
    const std::wstring chosen = (Page().rows ? table_ : facts_.List()).SelectedText();
    Box list = lists_;
    if (!chosen.empty()) list.height = std::max(0, list.height - Scaled(kChosenHeight, dpi_));
    ChangeText(chosen_, chosen);
    if (list == placed_) return;
    placed_ = list;
    ShowWindow(chosen_, chosen.empty() ? SW_HIDE : SW_SHOWNA);
    const int top = list.y + list.height + Scaled(4, dpi_);
    placement.Move(chosen_, {list.x, top, list.width, std::max(0, lists_.y + lists_.height - top)});
    facts_.Place(placement, list, dpi_);
    placement.Move(table_.Handle(), list);
}

void DetailsPane::UpdateLists() {
    const Box before = placed_;
    {
        Placement placement(GetParent(tabs_));
        PlaceLists(placement);
    }
    if (!(placed_ == before)) Settle();  // not while its user scrolls
}

void DetailsPane::Settle() {
    // The control arranges its rows of tabs by the width that it has got.
    if (TabsHeight() != lists_.y - box_.y) {
        Placement placement(GetParent(tabs_));
        PlaceTabs(placement);
        PlaceLists(placement);
    }
    if (Page().rows) table_.FitLast(Scaled(Page().columns.back().width, dpi_));
    const int selected = ListView_GetNextItem(Shown(), -1, LVNI_SELECTED);
    if (selected >= 0) ListView_EnsureVisible(Shown(), selected, FALSE);
}

void DetailsPane::Turn(int pages) {
    const int count = TabCtrl_GetItemCount(tabs_);
    TabCtrl_SetCurSel(tabs_, (TabCtrl_GetCurSel(tabs_) + count + pages) % count);
    ShowPage();
}

// Of the interfaces, since the other pages always have rows. A reading for the list does not ask
// for them.
std::wstring DetailsPane::EmptyText() const {
    const DeviceRow* row = session_.view.SelectedRow();
    if (!row) return Text(IDS_NO_SELECTION);
    const Scan& scan = session_.GetScan();
    const bool isReadWhole = std::any_of(row->answers.begin(), row->answers.end(), [&](size_t at) {
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
