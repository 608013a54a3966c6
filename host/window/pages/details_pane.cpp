#include "window/pages/details_pane.h"

#include <algorithm>
#include <utility>

#include "window/controls/lists.h"
#include "window/pages/pages.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

// The tab control is only the strip of tabs, and the list of its page is the next control.
void DetailsPane::Create(HWND parent) {
    tabs_ = CreateWindowExW(
        0, WC_TABCONTROLW, Text(IDS_DETAILS).c_str(),
        WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS | TCS_MULTILINE | TCS_RAGGEDRIGHT, 0,
        0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_PAGES)),
        GetModuleHandleW(nullptr), nullptr);
    WPARAM index = 0;
    for (const DevicePage& page : DevicePages()) {
        std::wstring title = Text(page.title);
        TCITEMW tab = {};
        tab.mask = TCIF_TEXT;
        tab.pszText = title.data();
        SendMessageW(tabs_, TCM_INSERTITEMW, index++, reinterpret_cast<LPARAM>(&tab));
    }
    facts_.Create(parent, IDC_DETAILS, Text(IDS_PAGE_SUMMARY));
    table_.Create(parent, IDC_TABLE);
    ShowWindow(table_.Handle(), SW_HIDE);
}

void DetailsPane::Show() {
    const DeviceRow* row = session_.view.SelectedRow();
    const DevicePage& page = Page();
    const std::vector<size_t> answers = row ? row->answers : std::vector<size_t>();
    const std::vector<size_t> old = std::exchange(answers_, answers);
    if (std::exchange(page_, &page) == &page && page.isOfAnswers && old == answers) return;
    // Another device's table starts at its top, without a selected row.
    if (old.empty() || answers.empty() || old.front() != answers.front()) table_.Show(0, nullptr);
    if (!page.rows) {
        facts_.Show(DetailFacts(session_));
        return;
    }
    TableRows rows = row ? page.rows(session_, *row) : TableRows();
    const size_t count = rows.size();
    table_.Show(count, [rows = std::move(rows)](size_t index, size_t column) {
        return rows[index][column];
    });
}

const DevicePage& DetailsPane::Page() const {
    return DevicePages()[static_cast<size_t>(std::max(0, TabCtrl_GetCurSel(tabs_)))];
}

void DetailsPane::ShowPage() {
    const DevicePage& page = Page();
    if (page.rows) table_.Begin(Text(page.title), page.columns, dpi_);
    page_ = nullptr;
    FitTable();
    Show();
    ShowWindow(facts_.Handle(), page.rows ? SW_HIDE : SW_SHOW);
    ShowWindow(table_.Handle(), page.rows ? SW_SHOW : SW_HIDE);
}

void DetailsPane::Resize(const RECT& place, int dpi) {
    const bool isNew = std::exchange(dpi_, dpi) != dpi;
    if (isNew) {
        TabCtrl_SetPadding(tabs_, MulDiv(6, dpi, 96), MulDiv(3, dpi, 96));
        // Only a new font makes the control compute its tabs.
        SendMessageW(tabs_, WM_SETFONT, SendMessageW(tabs_, WM_GETFONT, 0, 0), TRUE);
    }
    MoveWindow(tabs_, place.left, place.top, place.right - place.left, place.bottom - place.top,
               FALSE);
    RECT page = {0, 0, place.right - place.left, place.bottom - place.top};
    TabCtrl_AdjustRect(tabs_, FALSE, &page);  // below all rows of tabs
    MoveWindow(tabs_, place.left, place.top, place.right - place.left, page.top, TRUE);
    const RECT list = {place.left, place.top + page.top, place.right, place.bottom};
    facts_.Resize(list, dpi);
    MoveWindow(table_.Handle(), list.left, list.top, list.right - list.left, list.bottom - list.top,
               TRUE);
    if (isNew) ShowPage();  // columns have other widths
    FitTable();
}

void DetailsPane::FitTable() {
    if (Page().rows) table_.Fit(MulDiv(Page().columns.back().width, dpi_, 96));
}

void DetailsPane::Turn(int pages) {
    const int count = TabCtrl_GetItemCount(tabs_);
    TabCtrl_SetCurSel(tabs_, (TabCtrl_GetCurSel(tabs_) + count + pages) % count);
    ShowPage();
}

LRESULT DetailsPane::OnNotify(NMHDR* header) {
    if (header->idFrom == IDC_DETAILS) return facts_.OnNotify(header);
    if (header->idFrom == IDC_TABLE && header->code == LVN_GETEMPTYMARKUP) {
        const DeviceRow* row = session_.view.SelectedRow();
        const unsigned text = !row                      ? IDS_NO_SELECTION
                              : session_.WasAsked(*row) ? IDS_INTERFACES_NONE
                                                        : IDS_NOT_ASKED;
        return GiveEmptyText(header, text);
    }
    if (header->idFrom == IDC_TABLE) table_.OnNotify(header);
    if (header->idFrom == IDC_PAGES && header->code == TCN_SELCHANGE) ShowPage();
    return 0;
}

}  // namespace vndiscover::host
