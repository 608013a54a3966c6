#include "window/main/window_settings.h"

#include "window/controls/placement.h"
#include "window/resource.h"

namespace vndiscover::host {

void WindowSettings::Restore() {
    DeviceColumns::SetDefaults(values);
    SearchBar::SetDefaults(values);
    // A script gets the same sweep whatever settings a user has saved.
    if (state_.options.exit) DeviceColumns::SetForScripts(values);
    if (!state_.options.exit) values = LoadSettings().value_or(values);
    panes_.bar.Restore(values);
    panes_.split = values.splitPercent * 10;
    state_.session.SetLimits({values.lowPercent});
    ShowColumns();
}

void WindowSettings::SetLow(int percent) {
    values.lowPercent = percent;
    state_.session.SetLimits({percent});
    state_.showRows();
    state_.changes.LearnStates(state_.session.view.AllRows());
}

void WindowSettings::Save() {
    if (state_.options.exit) return;
    WINDOWPLACEMENT place = {};
    place.length = sizeof place;
    GetWindowPlacement(state_.window, &place);
    values.place = place.rcNormalPosition;
    values.isMaximized = place.showCmd == SW_SHOWMAXIMIZED;
    values.splitPercent = panes_.split / 10;
    panes_.bar.Store(values);
    StoreColumns();
    SaveSettings(values);
}

void WindowSettings::PlaceWindow() const {
    const HWND window = state_.window;
    WINDOWPLACEMENT saved = {};
    saved.length = sizeof saved;
    saved.rcNormalPosition = values.place;
    saved.showCmd = SW_HIDE;
    RECT box = {};
    if (!IsRectEmpty(&values.place)) SetWindowPlacement(window, &saved);
    GetWindowRect(window, &box);
    Box place = {box.left, box.top, box.right - box.left, box.bottom - box.top};
    if (IsRectEmpty(&values.place)) {
        place.width = Scaled(1100, panes_.Dpi());
        place.height = Scaled(620, panes_.Dpi());
    }
    // The monitor of a saved place may be gone.
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromRect(&box, MONITOR_DEFAULTTONEAREST), &monitor);
    const RECT& work = monitor.rcWork;
    place = FitInto({work.left, work.top, work.right - work.left, work.bottom - work.top}, place);
    SetWindowPos(window, nullptr, place.x, place.y, place.width, place.height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void WindowSettings::ToggleColumn(Column column) {
    StoreColumns();
    const uint32_t hidden = values.hidden ^ 1u << static_cast<unsigned>(column);
    if (hidden == kAllColumns) return;  // one must stay
    values.hidden = hidden;
    ShowColumns();
    state_.showRows();
}

void WindowSettings::ShowColumns() {
    state_.session.view.Hide(values.hidden);
    panes_.list.ShowColumns(values);
    for (unsigned index = 0; index < kColumnCount; ++index) {
        const bool isShown = panes_.list.Columns().IsShown(static_cast<Column>(index));
        CheckMenuItem(GetMenu(state_.window), IDM_COLUMN + index,
                      isShown ? MF_CHECKED : MF_UNCHECKED);
    }
}

}  // namespace vndiscover::host
