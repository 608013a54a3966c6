#include "window/main/panes.h"

#include <cstdlib>

#include "platform/wide_text.h"
#include "window/controls/dpi.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

// In tab order.
void Panes::Create() {
    const HWND window = state_.window;
    bar.Create(window);
    CreateControl(window, L"STATIC", IDS_DEVICES, SS_NOPREFIX, IDC_DEVICES_LABEL);
    list.Create(window);
    CreateControl(window, L"STATIC", IDS_DETAILS, SS_NOPREFIX, IDC_DETAILS_LABEL);
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

void Panes::Place() {
    RECT client = {};
    GetClientRect(state_.window, &client);
    LOGFONTW font = {};
    GetObjectW(font_.Get(), sizeof font, &font);
    LayoutInput input;
    input.width = client.right;
    input.height = client.bottom;
    input.statusHeight = status.Place(dpi_);
    input.dpi = dpi_;
    input.splitPercent = split;
    input.textHeight = MulDiv(std::abs(font.lfHeight), 4, 3);
    bar.Measure(font_.Get(), input);
    const Layout layout = Arrange(input);
    bar.Place(layout.bar, input);
    const auto move = [&](int id, const Box& box) {
        MoveWindow(Control(id), box.x, box.y, box.width, box.height, TRUE);
    };
    move(IDC_PRESET_NOTE, layout.note);
    move(IDC_DEVICES_LABEL, layout.devicesLabel);
    move(IDC_DEVICES, layout.devices);
    move(IDC_DETAILS_LABEL, layout.detailsLabel);
    const Box& box = layout.details;
    details.Resize({box.x, box.y, box.x + box.width, box.y + box.height}, dpi_);
}

void Panes::ShowRows() {
    state_.session.Refresh();
    list.Show();
    const DeviceView& view = state_.session.view;
    const std::wstring count = std::to_wstring(view.Count());
    std::wstring title = view.Count() == view.Total()
                             ? Text(IDS_SHOWN, {count})
                             : Text(IDS_SHOWN_OF, {count, std::to_wstring(view.Total())});
    if (view.Others() != 0) title = Text(IDS_SHOWN_OTHERS, {title, std::to_wstring(view.Others())});
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
