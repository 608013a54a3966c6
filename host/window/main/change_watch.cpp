#include "window/main/change_watch.h"

#include "platform/wide_text.h"
#include "values/utc_time.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void ChangeWatch::Restart() {
    const unsigned minutes = state_.settings.refreshMinutes;
    KillTimer(state_.window, kTimer);
    if (minutes != 0) SetTimer(state_.window, kTimer, minutes * 60000, nullptr);
}

void ChangeWatch::Record() {
    if (state_.progress.IsSearching()) return;  // whether a device is missed is not known yet
    const std::string time = UtcNow();
    bool hasChanged = false;
    const DeviceView& view = state_.session.view;
    for (const DeviceRow& row : view.AllRows())
        hasChanged |= !view.IsOther(row) && state_.changes.Add(row, time);
    if (!hasChanged) return;
    const DeviceRow* const seen = view.SelectedRow();
    if (seen && GetActiveWindow() == state_.window) state_.changes.Unmark(*seen);
    FLASHWINFO flash = {sizeof flash, state_.window, FLASHW_TRAY | FLASHW_TIMERNOFG, 0, 0};
    if (!GetActiveWindow()) FlashWindowEx(&flash);
    Show();
}

void ChangeWatch::Open() {
    table_.Open(state_.window, Text(IDS_CHANGES_TITLE),
                {{IDS_CALL_TIME, 140},
                 {IDS_CHANGE_DEVICE, 260},
                 {IDS_CHANGE_BEFORE, 150},
                 {IDS_CHANGE_AFTER, 150}});
    Show();
}

void ChangeWatch::Show() {
    std::vector<TableWindow::Row> rows;
    for (const StateChange& one : state_.changes.Changes())
        rows.push_back(
            {LocalTime(one.time), ToWide(one.device), ToWide(one.before), ToWide(one.after)});
    const std::wstring note = Text(IDS_CHANGES_NOTE, {Grouped(rows.size())});
    table_.Show(note, std::move(rows));
}

}  // namespace vndiscover::host
