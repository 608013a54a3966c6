#include "window/controls/list_control.h"

#include <windowsx.h>

#include <algorithm>
#include <utility>

#include "platform/wide_text.h"
#include "values/text.h"
#include "window/controls/clipboard.h"
#include "window/controls/placement.h"
#include "window/controls/popup_menu.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr int kRowHeight = 18;
constexpr int kValue = 1;  // the column after the one that names the row

int CountColumns(HWND list) { return Header_GetItemCount(ListView_GetHeader(list)); }

// Not with Alt: AltGr, which types letters, counts as Ctrl and Alt.
bool IsControlDown() { return GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0; }

std::wstring RowCell(const std::wstring& text) { return ToWide(HarmlessCell(ToUtf8(text))); }

template <class TextOf>
std::wstring LineOf(const std::vector<int>& columns, TextOf textOf) {
    std::wstring line;
    for (const int column : columns) line += textOf(column) + L"\t";
    if (!line.empty()) line.pop_back();
    return line + L"\r\n";
}

}  // namespace

std::vector<ListRow> ListRowsOf(const Report& report) {
    std::vector<ListRow> rows;
    const std::vector<ReportRow> all = RowsOf(report);
    std::string lastLabel;
    for (const ReportRow& row : all) {
        const bool isResult = !row.label.empty() && row.label == all.front().label;
        const bool isSame = row.label == std::exchange(lastLabel, row.label) && !row.repeatsLabel;
        const bool hasCounts = row.percent || row.label == "Printed";
        const std::wstring text = ToWide(WholeText(row));
        rows.push_back({{isSame ? L"" : ToWide(row.label), hasCounts ? GroupedCounts(text) : text},
                        {},
                        isResult || row.severity == Severity::kCritical,
                        ToWide(row.detail)});
        if (row.percent && !IsRoom(row.text)) rows.back().bar = BarOf(*row.percent, row.colour);
    }
    return rows;
}

ListControl::~ListControl() {
    if (Of(list_) == this) SetWindowLongPtrW(list_, GWLP_USERDATA, 0);
}

void ListControl::Create(HWND parent, int id, const std::wstring& name, bool isOfMany) {
    Attach(CreateWindowExW(WS_EX_CLIENTEDGE, WC_LISTVIEWW, name.c_str(),
                           WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP | LVS_REPORT |
                               LVS_OWNERDATA | LVS_SHOWSELALWAYS | (isOfMany ? 0 : LVS_SINGLESEL),
                           0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                           GetModuleHandleW(nullptr), nullptr));
    if (isOfMany)
        ListView_SetExtendedListViewStyleEx(list_, LVS_EX_HEADERDRAGDROP, LVS_EX_HEADERDRAGDROP);
}

void ListControl::Attach(HWND list) {
    list_ = list;
    images_.Reset();  // of a former list
    const LONG_PTR style = GetWindowLongPtrW(list_, GWL_STYLE);
    SetWindowLongPtrW(list_, GWL_STYLE, style | LVS_SHAREIMAGELISTS);  // images_ owns them
    ListView_SetExtendedListViewStyle(list_,
                                      LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    SetWindowLongPtrW(list_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

ListControl* ListControl::Of(HWND window) {
    wchar_t type[20] = L"";
    GetClassNameW(window, type, 20);
    if (lstrcmpiW(type, WC_LISTVIEWW) != 0) return nullptr;
    return reinterpret_cast<ListControl*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

void ListControl::SetDpi(int dpi) {
    const int before = std::exchange(dpi_, dpi);
    if (before == dpi && images_) return;
    for (int column = CountColumns(list_) - 1; column >= 0; --column)
        ListView_SetColumnWidth(list_, column, MulDiv(WidthOf(column), dpi, before));
    fitted_ = -1;
    OwnedImages images(ImageList_Create(1, Scaled(kRowHeight, dpi), ILC_COLOR, 1, 0));
    ListView_SetImageList(list_, images.Get(), LVSIL_SMALL);
    images_ = std::move(images);
}

void ListControl::SetColumns(const std::vector<ListColumn>& columns) {
    // From the last one: deleting another one makes the list move the texts of those after it.
    for (int count = CountColumns(list_); count > 0; --count)
        ListView_DeleteColumn(list_, count - 1);
    fitted_ = values_ = sorted_ = -1;
    headings_.clear();
    for (const ListColumn& each : columns) {
        const size_t index = headings_.size();
        if (each.heading == IDS_FACT_VALUE) values_ = static_cast<int>(index);
        headings_.push_back(HeadingText(each.heading));
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.cx = Scaled(each.width, dpi_);
        column.pszText = headings_.back().data();
        SendMessageW(list_, LVM_INSERTCOLUMNW, index, reinterpret_cast<LPARAM>(&column));
    }
}

int ListControl::WidthOf(int column) const {
    const int width = ListView_GetColumnWidth(list_, column);
    return column == fitted_ && width == fittedWidth_ ? ownWidth_ : width;
}

// The user may have given columns other widths, or another order.
void ListControl::Fit() {
    const std::vector<int> order = ShownOrder();
    if (order.empty()) return;
    const int column = values_ >= 0 ? values_ : order.back();
    if (fitted_ >= 0 && fitted_ != column)
        ListView_SetColumnWidth(list_, fitted_, WidthOf(fitted_));
    ownWidth_ = WidthOf(column);
    fitted_ = column;
    int rest = ClientSize(list_).cx;
    for (const int other : order)
        if (other != column) rest -= ListView_GetColumnWidth(list_, other);
    fittedWidth_ = std::max(rest, ownWidth_);
    if (ListView_GetColumnWidth(list_, column) != fittedWidth_)
        ListView_SetColumnWidth(list_, column, fittedWidth_);
}

void ListControl::Refresh() {
    isChanging_ = true;
    ListView_SetItemCountEx(list_, static_cast<int>(model_.Count()), LVSICF_NOSCROLL);
    Fit();  // there may be a scroll bar now, or none
    InvalidateRect(list_, nullptr, FALSE);
    reported_ = Selected();
    isChanging_ = false;
}

std::vector<size_t> ListControl::Selection() const {
    std::vector<size_t> rows;
    for (int row = -1; (row = ListView_GetNextItem(list_, row, LVNI_SELECTED)) >= 0;)
        rows.push_back(static_cast<size_t>(row));
    return rows;
}

int ListControl::Selected() const {
    const int focused = ListView_GetNextItem(list_, -1, LVNI_SELECTED | LVNI_FOCUSED);
    return focused >= 0 ? focused : ListView_GetNextItem(list_, -1, LVNI_SELECTED);
}

void ListControl::Select(const std::vector<size_t>& rows, int focused) {
    reported_ = focused;
    if (Selected() == focused && Selection() == rows) return;
    isChanging_ = true;
    ListView_SetItemState(list_, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    for (const size_t row : rows)
        ListView_SetItemState(list_, static_cast<int>(row), LVIS_SELECTED, LVIS_SELECTED);
    if (focused >= 0) ListView_SetItemState(list_, focused, LVIS_FOCUSED, LVIS_FOCUSED);
    ListView_SetSelectionMark(list_, focused);
    isChanging_ = false;
}

void ListControl::Select(int row) {
    if (row < 0) return Select({}, row);
    Select({static_cast<size_t>(row)}, row);
}

void ListControl::MarkSorted(int column, bool isDescending) {
    sorted_ = column;
    const HWND header = ListView_GetHeader(list_);
    for (int index = 0; index < CountColumns(list_); ++index) {
        HDITEMW item = {};
        item.mask = HDI_FORMAT;
        SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(index),
                     reinterpret_cast<LPARAM>(&item));
        const int old = item.fmt;
        item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        if (index == column) item.fmt |= isDescending ? HDF_SORTDOWN : HDF_SORTUP;
        if (item.fmt != old)
            SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(index),
                         reinterpret_cast<LPARAM>(&item));
    }
}

void ListControl::SortByNext() const {
    const std::vector<int> order = ShownOrder();
    const auto at = std::find(order.begin(), order.end(), sorted_);
    const bool isLast = at == order.end() || at + 1 == order.end();
    model_.OnHeading(static_cast<size_t>(isLast ? order.front() : *(at + 1)));
}

void ListControl::SortByKey() const {
    if (GetKeyState(VK_SHIFT) >= 0) return SortByNext();
    if (sorted_ >= 0) model_.OnHeading(static_cast<size_t>(sorted_));
}

std::wstring ListControl::TextOf(int row, int column) const {
    const auto index = static_cast<size_t>(row);
    const bool isThere = row >= 0 && index < model_.Count() && column < CountColumns(list_);
    return isThere ? model_.CellText(index, static_cast<size_t>(column)) : L"";
}

std::vector<int> ListControl::ShownOrder() const {
    std::vector<int> order(static_cast<size_t>(CountColumns(list_)));
    ListView_GetColumnOrderArray(list_, static_cast<int>(order.size()), order.data());
    return order;
}

std::wstring ListControl::RowText(size_t row) const {
    return LineOf(ShownOrder(), [&](int column) {
        return RowCell(model_.CellText(row, static_cast<size_t>(column)));
    });
}

std::wstring ListControl::SelectedText() const {
    std::wstring text;
    for (const int column : ShownOrder()) {
        std::wstring cell = TextOf(Selected(), column);
        cell.erase(0, cell.find_first_not_of(L' '));  // what is below a heading is indented
        if (cell.empty()) continue;
        if (!text.empty()) text += values_ < 0 ? L"; " : column == values_ ? L": " : L", ";
        if (values_ < 0) text += headings_[static_cast<size_t>(column)] + L": ";
        text += cell;
    }
    const auto row = static_cast<size_t>(Selected());  // -1: none has that number
    const std::wstring detail = model_.Detail(row);
    return detail.empty() ? text : text + L" (" + detail + L")";
}

std::wstring ListControl::TableText() const {
    std::wstring table =
        LineOf(ShownOrder(), [&](int column) { return headings_[static_cast<size_t>(column)]; });
    for (size_t row = 0; row < model_.Count(); ++row) table += RowText(row);
    return table;
}

void ListControl::Copy(int command) const {
    std::wstring text;
    if (command == IDM_COPY_TABLE) {
        text = TableText();
    } else if (command == IDM_COPY_ROW) {
        for (const size_t row : Selection()) text += RowText(row);
    } else if (command == IDM_COPY_CELL) {
        text = TextOf(Selected(), kValue);
    } else if (command >= IDM_CELL) {
        text = TextOf(Selected(), command - IDM_CELL);
    }
    if (!text.empty()) CopyText(list_, text);
}

int ListControl::CopyCommandOf(WPARAM key) {
    if (!IsControlDown()) return 0;
    const bool isShifted = GetKeyState(VK_SHIFT) < 0;
    if (key == 'C') return isShifted ? IDM_COPY_CELL : IDM_COPY_ROW;
    if (key == 'T' && isShifted) return IDM_COPY_TABLE;
    return 0;
}

LRESULT ListControl::OnNotify(NMHDR* header) {
    const UINT code = header->code;
    if (code == NM_CUSTOMDRAW) return Draw(*reinterpret_cast<NMLVCUSTOMDRAW*>(header));
    if (code == LVN_ODFINDITEMW) return FindRow(*reinterpret_cast<NMLVFINDITEMW*>(header));
    if (code == LVN_GETDISPINFOW) FillCell(reinterpret_cast<NMLVDISPINFOW*>(header)->item);
    if (code == LVN_ITEMCHANGED || code == LVN_ODSTATECHANGED) OnChanged();
    if (code == LVN_COLUMNCLICK)
        model_.OnHeading(static_cast<size_t>(reinterpret_cast<NMLISTVIEW*>(header)->iSubItem));
    if (code == LVN_KEYDOWN && reinterpret_cast<NMLVKEYDOWN*>(header)->wVKey == 'A' &&
        IsControlDown())
        ListView_SetItemState(list_, -1, LVIS_SELECTED, LVIS_SELECTED);
    return 0;
}

// The list sends up to three messages for one change.
void ListControl::OnChanged() {
    if (isChanging_) return;
    model_.OnSelection();
    const int before = std::exchange(reported_, Selected());
    if (before != reported_) model_.OnSelected();
}

void ListControl::FillCell(LVITEMW& item) const {
    if (item.mask & LVIF_TEXT)
        lstrcpynW(item.pszText, TextOf(item.iItem, item.iSubItem).c_str(), item.cchTextMax);
    if (item.mask & LVIF_IMAGE) item.iImage = -1;
}

// Begins at the row that the list gives. Returns -1 if no row begins with the typed letters.
LRESULT ListControl::FindRow(const NMLVFINDITEMW& search) const {
    const int count = static_cast<int>(model_.Count());
    if (!(search.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) || !search.lvfi.psz) return -1;
    const std::wstring typed = search.lvfi.psz;
    for (int step = 0; step < count; ++step) {
        const int row = (std::max(search.iStart, 0) + step) % count;
        const std::wstring text = model_.SearchText(static_cast<size_t>(row));
        const auto size = static_cast<int>(std::min(text.size(), typed.size()));
        if (CompareStringOrdinal(text.c_str(), size, typed.c_str(), static_cast<int>(typed.size()),
                                 TRUE) == CSTR_EQUAL)
            return row;
    }
    return -1;
}

// Drawn here since the list itself asks only once for such a text, even if it changes later.
void ListControl::DrawEmpty(HDC dc) const {
    RECT place = {};
    GetClientRect(list_, &place);
    place.top += BoxOf(ListView_GetHeader(list_)).height + Scaled(kRowHeight / 2, dpi_);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    DrawTextW(dc, EmptyText().c_str(), -1, &place, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
}

// Fills the background before the cells are drawn, since Wine leaves a gap between them. Without
// the focus, the background hardly differs from that of other rows, and in high contrast not at
// all. So a frame is drawn after the cells.
void ListControl::DrawSelection(const NMLVCUSTOMDRAW& draw) const {
    const auto row = static_cast<int>(draw.nmcd.dwItemSpec);
    if (ListView_GetItemState(list_, row, LVIS_SELECTED) == 0) return;
    RECT place = {};
    ListView_GetItemRect(list_, row, &place, LVIR_BOUNDS);
    if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT)
        FillRect(draw.nmcd.hdc, &place, GetSysColorBrush(ColoursOf(list_, row).background));
    else if (GetFocus() != list_)
        FrameRect(draw.nmcd.hdc, &place, GetSysColorBrush(COLOR_HIGHLIGHT));
}

// The list's font, or its bold form.
HFONT ListControl::FontOf(size_t row) {
    const auto font = reinterpret_cast<HFONT>(SendMessageW(list_, WM_GETFONT, 0, 0));
    if (!model_.IsBold(row)) return font;
    if (std::exchange(boldOf_, font) != font || !bold_) {
        LOGFONTW bold = {};
        GetObjectW(font, sizeof bold, &bold);
        bold.lfWeight = FW_BOLD;
        bold_.Reset(CreateFontIndirectW(&bold));
    }
    return bold_.Get();
}

LRESULT ListControl::Draw(NMLVCUSTOMDRAW& draw) {
    const DWORD stage = draw.nmcd.dwDrawStage;
    if (stage == CDDS_PREPAINT)
        return EmptyText().empty() ? CDRF_NOTIFYITEMDRAW : CDRF_NOTIFYPOSTPAINT;
    if (stage == (CDDS_ITEMPREPAINT | CDDS_SUBITEM)) return DrawCell(draw);
    if (stage == CDDS_POSTPAINT) DrawEmpty(draw.nmcd.hdc);
    if (stage == CDDS_ITEMPREPAINT || stage == CDDS_ITEMPOSTPAINT) DrawSelection(draw);
    // CDRF_NOTIFYITEMDRAW is the same number as CDRF_NOTIFYSUBITEMDRAW.
    return stage == CDDS_ITEMPREPAINT ? CDRF_NOTIFYITEMDRAW | CDRF_NOTIFYPOSTPAINT : CDRF_DODEFAULT;
}

LRESULT ListControl::DrawCell(NMLVCUSTOMDRAW& draw) {
    const auto row = static_cast<size_t>(draw.nmcd.dwItemSpec);
    const auto column = static_cast<size_t>(draw.iSubItem);
    if (row >= model_.Count()) return CDRF_DODEFAULT;
    const bool isGrey = model_.IsGrey(row);
    if (isGrey) draw.clrText = GreyText();
    SelectObject(draw.nmcd.hdc, FontOf(row));
    const auto bar = model_.Bar(row, column);
    if (!bar) return CDRF_NEWFONT;
    RECT cell = {};
    ListView_GetSubItemRect(list_, static_cast<int>(row), draw.iSubItem, LVIR_LABEL, &cell);
    DrawBar(draw, cell, *bar, model_.CellText(row, column), dpi_, isGrey);
    return CDRF_SKIPDEFAULT;
}

bool ListControl::FindMenuPlace(LPARAM place, MenuPlace& found) const {
    found.point = {GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    found.column.reset();
    if (place == kByKeyboard) {
        RECT row = {};
        GetClientRect(ListView_GetHeader(list_), &row);
        if (Selected() >= 0) {  // the row may be scrolled out of sight
            ListView_EnsureVisible(list_, Selected(), FALSE);
            ListView_GetItemRect(list_, Selected(), &row, LVIR_LABEL);
        }
        found.point = {row.left, row.bottom};
        ClientToScreen(list_, &found.point);
        return true;
    }
    LVHITTESTINFO cell = {};
    cell.pt = found.point;
    ScreenToClient(list_, &cell.pt);
    if (ListView_SubItemHitTest(list_, &cell) < 0) return false;
    found.column = static_cast<size_t>(cell.iSubItem);
    return true;
}

void ListControl::ShowCopyMenu(LPARAM place) {
    MenuPlace found = {};
    if (!FindMenuPlace(place, found)) return;
    const OwnedMenu menu =
        MakePopup({IDM_COPY_CELL, IDS_MENU_CELLS, IDM_COPY_ROW, IDM_COPY_TABLE}, headings_);
    for (UINT item = 0; item < 4; ++item) {
        const bool hasText = item == 3 ? model_.Count() != 0 : Selected() >= 0;
        EnableMenuItem(menu.Get(), item, MF_BYPOSITION | (hasText ? MF_ENABLED : MF_GRAYED));
    }
    int command =
        TrackPopupMenu(menu.Get(), TPM_RIGHTBUTTON | TPM_RETURNCMD | TPM_NONOTIFY, found.point.x,
                       found.point.y, 0, GetAncestor(list_, GA_ROOT), nullptr);
    if (command == IDM_COPY_CELL && found.column)
        command = IDM_CELL + static_cast<int>(*found.column);
    Copy(command);
}

std::optional<LRESULT> HandleListMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_NOTIFY && message != WM_CONTEXTMENU) return std::nullopt;
    auto* header = reinterpret_cast<NMHDR*>(lParam);
    const bool isNotify = message == WM_NOTIFY;
    auto* list = ListControl::Of(isNotify ? header->hwndFrom : reinterpret_cast<HWND>(wParam));
    if (!list) return std::nullopt;
    if (isNotify) return list->OnNotify(header);
    list->ShowCopyMenu(lParam);
    return 0;
}

}  // namespace vndiscover::host
