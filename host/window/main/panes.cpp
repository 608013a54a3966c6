#include "window/main/panes.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/wide_text.h"
#include "window/controls/placement.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

// In tab order.
void Panes::Create() {
    const HWND window = state_.window;
    bar.Create(window);
    CreateControl(window, L"STATIC", IDS_DEVICES, SS_NOPREFIX | SS_ENDELLIPSIS, IDC_DEVICES_LABEL);
    list.Create(window);
    CreateControl(window, L"STATIC", IDS_DETAILS, SS_NOPREFIX | SS_ENDELLIPSIS, IDC_DETAILS_LABEL);
    details.Create(window);
    status.Create();
}

void Panes::SetDpi(int dpi) {
    dpi_ = dpi;
    list.SetDpi(dpi);
    OwnedFont font = MakeMessageFont(dpi);
    for (HWND child = GetWindow(state_.window, GW_CHILD); child;
         child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), TRUE);
    font_ = std::move(font);
}

LayoutInput Panes::Measure(int width, int height) const {
    RECT client = {};
    GetClientRect(Control(IDC_STATUS), &client);
    LOGFONTW font = {};
    GetObjectW(font_.Get(), sizeof font, &font);
    LayoutInput input;
    input.width = width;
    input.height = height;
    input.statusHeight = client.bottom;
    input.dpi = dpi_;
    input.split = split;
    input.textHeight = MulDiv(std::abs(font.lfHeight), 4, 3);
    bar.Measure(font_.Get(), input);
    return input;
}

void Panes::Place() {
    RECT client = {};
    GetClientRect(state_.window, &client);
    status.Place(dpi_);
    const LayoutInput input = Measure(client.right, client.bottom);
    layout_ = Arrange(input);
    {
        Placement placement(state_.window);
        bar.Place(placement, layout_, input);
        placement.Move(Control(IDC_DEVICES_LABEL), layout_.devicesLabel);
        placement.Move(list.Handle(), layout_.devices);
        placement.Move(Control(IDC_DETAILS_LABEL), layout_.detailsLabel);
        details.Place(placement, layout_.details, dpi_);
    }
    details.Settle();
}

SIZE Panes::MinimumSize() const {
    if (IsIconic(state_.window)) return {};  // whose frame is another one
    RECT window = {}, client = {};
    GetWindowRect(state_.window, &window);
    GetClientRect(state_.window, &client);
    const int width = Scaled(520, dpi_);
    return {width + window.right - window.left - client.right,
            Arrange(Measure(width, 0)).least + window.bottom - window.top - client.bottom};
}

bool Panes::OnMouse(UINT message) {
    POINT at = {};
    GetCursorPos(&at);
    ScreenToClient(state_.window, &at);
    const Box& gap = layout_.gap;
    const RECT area = {gap.x, gap.y, gap.x + gap.width, gap.y + gap.height};
    const bool isDragging = GetCapture() == state_.window;
    if (!isDragging && (message == WM_MOUSEMOVE || !PtInRect(&area, at))) return false;
    if (message == WM_SETCURSOR)
        SetCursor(LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_SIZEWE)));
    if (message == WM_LBUTTONDOWN) SetCapture(state_.window);
    if (message == WM_MOUSEMOVE) Widen(at.x - gap.x - gap.width / 2);
    if (message == WM_LBUTTONUP) ReleaseCapture();
    return true;
}

void Panes::Widen(int pixels) {
    const int whole = layout_.note.width;
    const int wanted = layout_.devices.width + layout_.gap.width + pixels;
    split = std::clamp(wanted * 1000 / std::max(1, whole), 200, 800);
    Place();
}

void Panes::NextPane() const {
    SetFocus(GetFocus() == list.Handle() ? details.Shown() : list.Handle());
}

void Panes::ShowRows() {
    state_.session.Refresh();
    list.Show();
    const DeviceView& view = state_.session.view;
    const std::wstring count = Grouped(view.Count());
    std::wstring title = view.Count() == view.Total()
                             ? Text(IDS_SHOWN, {count})
                             : Text(IDS_SHOWN_OF, {count, Grouped(view.Total())});
    if (view.Others() != 0) title = Text(IDS_SHOWN_OTHERS, {title, Grouped(view.Others())});
    ChangeText(Control(IDC_DEVICES_LABEL), title);
    ShowDetails();
}

void Panes::ShowDetails() {
    const DeviceRow* row = state_.session.view.SelectedRow();
    std::wstring title = Text(IDS_DETAILS);
    for (const Column column : {Column::kName, Column::kModel, Column::kAddress}) {
        if (!row || row->Text(column).empty()) continue;
        title = Text(IDS_DETAILS_OF, {ToWide(row->Text(column))});
        break;
    }
    ChangeText(Control(IDC_DETAILS_LABEL), title);
    details.Show();
}

}  // namespace vndiscover::host
