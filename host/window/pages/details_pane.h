// The details of the selected device, as pages chosen by tabs.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <vector>

#include "window/controls/facts_list.h"
#include "window/controls/table_list.h"
#include "window/pages/device_pages.h"
#include "window/work/session.h"

namespace vndiscover::host {

class DetailsPane {
  public:
    // The session must outlive the pane.
    explicit DetailsPane(const Session& session) : session_(session) {}
    // The controls are children of `parent` and are destroyed with it.
    void Create(HWND parent);
    // Shows the selected device; the page stays.
    void Show();
    void Resize(const RECT& place, int dpi);
    // Chooses the next page (1) or the one before (-1).
    void Turn(int pages);
    // Handles WM_NOTIFY from one of the controls and returns the result of the message.
    LRESULT OnNotify(NMHDR* header);

  private:
    const DevicePage& Page() const;
    void ShowPage();
    void FitTable();

    const Session& session_;
    HWND tabs_ = nullptr;
    FactsList facts_;  // the summary
    TableList table_;  // the other pages
    int dpi_ = 96;
    const DevicePage* page_ = nullptr;  // the one that is shown; null: none yet
    std::vector<size_t> answers_;       // of the device that is shown
};

}  // namespace vndiscover::host
