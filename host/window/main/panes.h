// The controls of the main window: their fonts, places and titles, what the status says, and the
// user's settings of all that.
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
    // Restored when the window opens, saved when it closes.
    void RestoreSettings();
    void SaveSettings();
    // Where the window was when it was closed last, within the work area of a monitor.
    void PlaceWindow() const;
    // Updates fonts and sizes, also after a change of the system's colours and fonts.
    void SetDpi(int dpi);
    int Dpi() const { return dpi_; }
    void Place();
    // Of the window.
    SIZE MinimumSize() const;
    // Handles a message of the mouse, by which the user drags the gap between list and details.
    // Returns false if it is not about that.
    bool OnMouse(UINT message);
    // Makes the list wider by so many pixels.
    void Widen(int pixels);
    // `direction`: negative for a narrower list.
    bool MayWiden(int direction) const {
        return direction < 0 ? split_ > kMinSplit && list_.width + Margin() > minWidth_
                             : split_ < kMaxSplit && details_.width > minWidth_;
    }
    void NextPane() const;             // gives it the focus
    void ToggleColumn(Column column);  // not the last one that is shown
    // Supplies need attention below another percentage now.
    void UseLow();
    void ShowRows();
    void ShowDetails();
    void ShowListTitle() const;     // with the number of devices that changed
    void ShowDetailsTitle() const;  // with the number of devices selected
    // What is in progress now: in words, as a bar while devices are read, and on the button.
    void ShowStatus() const;
    TTTOOLINFOW StatusTool() const;  // of the tooltip

  private:
    HWND Control(int id) const { return GetDlgItem(state_.window, id); }
    int StatusHeight() const;
    int Margin() const;  // also the width of the gap between list and details
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
    int split_ = 0;     // of the width that the list has, in thousandths
    int minWidth_ = 0;  // of each pane
    int dpi_ = 96;
};

}  // namespace vndiscover::host
