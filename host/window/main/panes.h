// The controls of the main window: their fonts, places, titles and settings, and the status.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

#include "window/controls/owners.h"
#include "window/main/device_list.h"
#include "window/main/search_bar.h"
#include "window/main/window_state.h"
#include "window/pages/details_pane.h"

namespace vndiscover::host {

class Panes {
  public:
    explicit Panes(WindowState& state)  // which must outlive it
        : list(state), details(state.session), state_(state) {}
    SearchBar bar;
    DeviceList list;
    DetailsPane details;

    // Children of the state's window, which destroys them.
    void Create();
    // Called when the window opens and when it closes.
    void RestoreSettings();
    void SaveSettings();
    // Moves the window to where it was closed last, within the work area of a monitor.
    void PlaceWindow() const;
    // Updates fonts and sizes. Called after a change of the system's colours and fonts, too.
    void SetDpi(int dpi);
    int Dpi() const { return dpi_; }
    void Place();
    // Of the whole window.
    SIZE MinimumSize() const;
    // Handles a mouse message about the gap between list and details, which the user can drag.
    // Returns false if the message is about something else.
    bool OnMouse(UINT message);
    // Makes the list wider, or narrower by a negative number.
    void Widen(int pixels);
    // `direction`: negative for a narrower list.
    bool MayWiden(int direction) const {
        return direction < 0 ? split_ > kMinSplit && list_.width + Margin() > minWidth_
                             : split_ < kMaxSplit && details_.width > minWidth_;
    }
    void FocusNextPane() const;
    void ToggleColumn(Column column);  // must not hide the last one that is shown
    void UseLow();                     // for a new percentage below which supplies need attention
    void ShowRows();
    void ShowDetails();
    void ShowListTitle() const;     // with the number of devices that changed
    void ShowDetailsTitle() const;  // with the number of devices selected
    // Shows what is in progress: in words, as a bar while devices are read, and on the button.
    void ShowStatus() const;
    TTTOOLINFOW StatusTool() const;  // describes the status bar for its tooltip

  private:
    HWND Control(int id) const { return GetDlgItem(state_.window, id); }
    int StatusHeight() const;
    int Margin() const;  // also between list and details
    int ListTop(int labelTop) const;
    void PlaceStatus() const;
    void ShowStatusTip() const;
    std::wstring TextOf(const Progress::Status& status) const;
    std::wstring ReadText(const Progress::Status& status) const;
    std::wstring EmptyNote(Progress::Kind kind) const;

    WindowState& state_;
    HWND tip_ = nullptr;
    OwnedFont font_;
    Box list_, details_;
    static constexpr int kMinSplit = 200, kMaxSplit = 800;
    int split_ = 0;     // the list's share of the width, in thousandths
    int minWidth_ = 0;  // of each pane
    int dpi_ = 96;
};

}  // namespace vndiscover::host
