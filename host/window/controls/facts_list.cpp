#include "window/controls/facts_list.h"

#include <algorithm>

#include "window/controls/lists.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr int kMarkSize = 16;
constexpr int kBarWidth = 60;

int Scaled(int pixels, int dpi) { return MulDiv(pixels, dpi, 96); }

// A sign in a box, in text colours: it is recognised by its shape, not by its colour.
HBITMAP DrawMark(HDC screen, int size, const wchar_t* sign) {
    const HDC dc = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, size, size);
    const HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
    RECT all = {0, 0, size, size};
    FillRect(dc, &all, GetSysColorBrush(COLOR_WINDOW));
    RECT frame = {1, 1, size - 1, size - 1};
    FrameRect(dc, &frame, GetSysColorBrush(COLOR_WINDOWTEXT));
    const HFONT font = CreateFontW(-size * 3 / 4, 0, 0, 0, FW_BOLD, 0, 0, 0, DEFAULT_CHARSET, 0, 0,
                                   CLEARTYPE_QUALITY, 0, L"Segoe UI");
    const HGDIOBJ oldFont = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    DrawTextW(dc, sign, -1, &all, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    SelectObject(dc, oldFont);
    DeleteObject(font);
    SelectObject(dc, oldBitmap);
    DeleteDC(dc);
    return bitmap;
}

// The system's numbers of colours.
struct BarColours {
    int background, text, level;
};

// Those of the row's other cells: a list without the focus shows its selection faintly.
BarColours ColoursOf(HWND list, int row) {
    if (ListView_GetItemState(list, row, LVIS_SELECTED) == 0)
        return {COLOR_WINDOW, COLOR_WINDOWTEXT, COLOR_HIGHLIGHT};
    if (GetFocus() != list) return {COLOR_BTNFACE, COLOR_BTNTEXT, COLOR_HIGHLIGHT};
    return {COLOR_HIGHLIGHT, COLOR_HIGHLIGHTTEXT, COLOR_HIGHLIGHTTEXT};
}

}  // namespace

void DrawBar(const NMLVCUSTOMDRAW& draw, const RECT& cell, int percent, const std::wstring& text,
             int dpi) {
    const HDC dc = draw.nmcd.hdc;
    const BarColours colours =
        ColoursOf(draw.nmcd.hdr.hwndFrom, static_cast<int>(draw.nmcd.dwItemSpec));
    FillRect(dc, &cell, GetSysColorBrush(colours.background));
    const int inset = Scaled(4, dpi);
    const int rim = Scaled(3, dpi);
    RECT bar = {cell.left + inset, cell.top + rim, cell.left + inset + Scaled(kBarWidth, dpi),
                cell.bottom - rim};
    bar.right = std::min(bar.right, cell.right - inset);
    if (bar.right > bar.left) {
        FrameRect(dc, &bar, GetSysColorBrush(colours.text));
        RECT full = bar;
        InflateRect(&full, -2, -2);
        full.right = full.left + MulDiv(full.right - full.left, percent, 100);
        FillRect(dc, &full, GetSysColorBrush(colours.level));
    }
    RECT place = {bar.right + inset + 2, cell.top, cell.right - 2, cell.bottom};
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(colours.text));
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place,
              DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
}

void FactsList::Create(HWND parent, int id, const std::wstring& name) {
    list_ = MakeList(parent, id, name);
    for (const unsigned heading : {IDS_FACT_WHAT, IDS_FACT_VALUE})
        AddColumn(list_, Text(heading), 100);
}

void FactsList::Show(std::vector<Fact> facts) {
    if (facts == facts_) return;
    facts_ = std::move(facts);
    SetRowImages();
    ListView_SetItemCountEx(list_, static_cast<int>(facts_.size()), LVSICF_NOSCROLL);
    InvalidateRect(list_, nullptr, FALSE);
}

HIMAGELIST FactsList::MakeMarks() const {
    const int size = Scaled(kMarkSize, dpi_);
    const HIMAGELIST marks = ImageList_Create(size, size, ILC_COLOR24, 3, 0);
    const HDC screen = GetDC(nullptr);
    for (const wchar_t* sign : {L"+", L"\x2212", L"\x2260"}) {
        const HBITMAP bitmap = DrawMark(screen, size, sign);
        ImageList_Add(marks, bitmap, nullptr);
        DeleteObject(bitmap);
    }
    ReleaseDC(nullptr, screen);
    return marks;
}

void FactsList::SetRowImages() {
    const bool hasMarks = std::any_of(facts_.begin(), facts_.end(),
                                      [](const Fact& fact) { return fact.mark != Fact::kNone; });
    if (hasMarks) {
        SetImages(list_, MakeMarks());
    } else {
        SetRowHeight(list_, dpi_);
    }
}

void FactsList::Resize(const RECT& place, int dpi) {
    const bool isNew = dpi != dpi_;
    dpi_ = dpi;
    if (isNew) SetRowImages();
    MoveWindow(list_, place.left, place.top, place.right - place.left, place.bottom - place.top,
               TRUE);
    const int width = place.right - place.left - GetSystemMetrics(SM_CXVSCROLL) - Scaled(6, dpi);
    const int labels = std::min(Scaled(150, dpi), width / 3);
    ListView_SetColumnWidth(list_, 0, labels);
    ListView_SetColumnWidth(list_, 1, std::max(0, width - labels));
}

LRESULT FactsList::OnNotify(NMHDR* header) {
    if (header->code == LVN_GETDISPINFOW) {
        LVITEMW& item = reinterpret_cast<NMLVDISPINFOW*>(header)->item;
        if (static_cast<size_t>(item.iItem) >= facts_.size()) return 0;
        const Fact& fact = facts_[static_cast<size_t>(item.iItem)];
        GiveText(item, item.iSubItem == 0 ? fact.label : fact.text);
        if (item.mask & LVIF_IMAGE) item.iImage = fact.mark - 1;
        return 0;
    }
    if (header->code != NM_CUSTOMDRAW) return 0;
    auto* draw = reinterpret_cast<NMLVCUSTOMDRAW*>(header);
    const auto row = static_cast<size_t>(draw->nmcd.dwItemSpec);
    switch (draw->nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
        case CDDS_ITEMPREPAINT:
            return CDRF_NOTIFYITEMDRAW;  // CDRF_NOTIFYSUBITEMDRAW is the same number
        case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
            if (draw->iSubItem != 1 || row >= facts_.size() || !facts_[row].percent)
                return CDRF_DODEFAULT;
            RECT cell = {};
            ListView_GetSubItemRect(list_, static_cast<int>(row), 1, LVIR_BOUNDS, &cell);
            DrawBar(*draw, cell, *facts_[row].percent, facts_[row].text, dpi_);
            return CDRF_SKIPDEFAULT;
        }
        default:
            return CDRF_DODEFAULT;
    }
}

}  // namespace vndiscover::host
