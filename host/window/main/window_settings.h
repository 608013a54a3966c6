// The user's settings of the main window: restored when it opens, saved when it closes.
#pragma once

#include <windows.h>

#include "window/main/panes.h"
#include "window/main/window_state.h"
#include "window/store/settings.h"

namespace vndiscover::host {

class WindowSettings {
  public:
    // Both must outlive it.
    WindowSettings(WindowState& state, Panes& panes) : state_(state), panes_(panes) {}
    Settings values;

    void Restore();
    void Save();
    // Where it was when it was closed last, within the work area of a monitor.
    void PlaceWindow() const;
    void ToggleColumn(Column column);
    // The percentage below which a supply needs attention.
    void SetLow(int percent);
    // For columns of another DPI.
    void StoreColumns() { panes_.list.StoreColumns(values); }
    void ShowColumns();

  private:
    WindowState& state_;
    Panes& panes_;
};

}  // namespace vndiscover::host
