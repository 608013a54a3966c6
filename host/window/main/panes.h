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
    void ShowRows();
    void ShowDetails();
    int split = 0;  // of the width, in percent, that the list has

  private:
    HWND Control(int id) const { return GetDlgItem(state_.window, id); }

    WindowState& state_;
    OwnedFont font_;
    int dpi_ = 96;
};

}  // namespace vndiscover::host
