#include "window/controls/facts_list.h"

#include <algorithm>

#include "platform/wide_text.h"
#include "window/controls/dpi.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr int kMarkSize = 16;

// A sign in a box, in text colours: it is recognised by its shape, not by its colour.
OwnedBitmap DrawMark(HDC screen, int size, const wchar_t* sign) {
    const OwnedMemoryDc dc(CreateCompatibleDC(screen));
    OwnedBitmap bitmap(CreateCompatibleBitmap(screen, size, size));
    const Selection drawing(dc.Get(), bitmap.Get());
    RECT all = {0, 0, size, size};
    FillRect(dc.Get(), &all, GetSysColorBrush(COLOR_WINDOW));
    RECT frame = {1, 1, size - 1, size - 1};
    FrameRect(dc.Get(), &frame, GetSysColorBrush(COLOR_WINDOWTEXT));
    const OwnedFont font(CreateFontW(-size * 3 / 4, 0, 0, 0, FW_BOLD, 0, 0, 0, DEFAULT_CHARSET, 0,
                                     0, CLEARTYPE_QUALITY, 0, L"Segoe UI"));
    const Selection writing(dc.Get(), font.Get());
    SetBkMode(dc.Get(), TRANSPARENT);
    SetTextColor(dc.Get(), GetSysColor(COLOR_WINDOWTEXT));
    DrawTextW(dc.Get(), sign, -1, &all, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    return bitmap;
}

// In the order of Mark.
OwnedImages MakeMarks(int dpi) {
    const int size = Scaled(kMarkSize, dpi);
    OwnedImages marks(ImageList_Create(size, size, ILC_COLOR24, 3, 0));
    const WindowDc screen(nullptr);
    for (const wchar_t* sign : {L"+", L"\x2212", L"\x2260"})
        ImageList_Add(marks.Get(), DrawMark(screen.Get(), size, sign).Get(), nullptr);
    return marks;
}

}  // namespace

void FactsList::Create(HWND parent, int id, const std::wstring& name) {
    list_.Create(parent, id, name);
    list_.SetColumns({{IDS_FACT_WHAT, 100}, {IDS_FACT_VALUE, 100}});
}

void FactsList::Show(std::vector<ReportRow> rows) {
    if (rows == rows_) return;
    rows_ = std::move(rows);
    SetRowImages();
    list_.Refresh();
}

void FactsList::SetRowImages() {
    list_.SetDpi(dpi_);
    if (std::any_of(rows_.begin(), rows_.end(),
                    [](const ReportRow& row) { return row.mark != Mark::kNone; }))
        list_.SetImages(MakeMarks(dpi_));
}

void FactsList::Resize(const RECT& place, int dpi) {
    const bool isNew = std::exchange(dpi_, dpi) != dpi;
    if (isNew) SetRowImages();
    list_.Move(place);
    const int width = place.right - place.left - GetSystemMetrics(SM_CXVSCROLL) - Scaled(6, dpi);
    const int labels = std::min(Scaled(150, dpi), width / 3);
    ListView_SetColumnWidth(list_.Handle(), 0, labels);
    ListView_SetColumnWidth(list_.Handle(), 1, std::max(0, width - labels));
}

std::wstring FactsList::CellText(size_t row, size_t column) const {
    return ToWide(column == 0 ? rows_[row].label : WholeText(rows_[row]));
}

std::optional<LevelBar> FactsList::Bar(size_t row, size_t column) const {
    const auto percent = rows_[row].percent;
    if (column != 1 || !percent) return std::nullopt;
    const SupplyColour* colour = FindSupplyColour(rows_[row].colour);
    const uint32_t rgb = colour ? colour->rgb : 0;
    return LevelBar{*percent, colour ? RGB(rgb >> 16, rgb >> 8 & 0xFF, rgb & 0xFF) : CLR_NONE};
}

}  // namespace vndiscover::host
