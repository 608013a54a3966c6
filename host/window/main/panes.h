// The controls of the main window: their fonts, titles and places.
#pragma once

#include <windows.h>

#include <utility>

#include "window/controls/owners.h"
#include "window/main/device_list.h"
#include "window/main/search_bar.h"
#include "window/main/status_bar.h"
#include "window/main/window_state.h"
#include "window/pages/details_pane.h"

namespace vndiscover::host {

class Panes {
  public:
    // The state must outlive it.
    Panes(WindowState& state, DeviceList::Actions actions)
        : list(state.session, state.changes, std::move(actions)),
          details(state.session),
          status(state),
          state_(state) {}
    SearchBar bar;
    DeviceList list;
    DetailsPane details;
    StatusBar status;

    // Children of the state's window, which destroys them.
    void Create();
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
    void NextPane() const;  // gives it the focus
    void ShowRows();
    void ShowDetails();
    int split = 0;  // of the width that the list has, in thousandths

  private:
    LayoutInput Measure(int width, int height) const;
    HWND Control(int id) const { return GetDlgItem(state_.window, id); }

    WindowState& state_;
    OwnedFont font_;
    Layout layout_;
    int dpi_ = 96;
};

}  // namespace vndiscover::host
