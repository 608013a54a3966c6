// The details of the selected device, as pages chosen by tabs.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "window/controls/list_control.h"
#include "window/controls/placement.h"
#include "window/work/session.h"

namespace vndiscover::host {

struct DevicePage;

class DetailsPane : private ListModel {
  public:
    // The session must outlive the pane.
    explicit DetailsPane(const Session& session) : session_(session) {}
    // The controls are children of `parent` and are destroyed with it.
    void Create(HWND parent);
    // Shows the selected device on the current page.
    void Show();
    void Place(Placement& placement, const Box& box, int dpi);
    // Must be called after Place, when the controls have been moved.
    void OnPlaced();
    HWND List() const { return list_.Handle(); }
    // Shows the next page (1) or the one before (-1).
    void TurnPage(int pages);
    // Handles WM_NOTIFY from the tabs.
    void OnNotify(const NMHDR& header);

  private:
    std::wstring EmptyText() const override;
    void OnSelected() override { ShowChosen(); }
    const DevicePage& Page() const;
    bool IsSummary() const;
    void ShowRows(std::vector<ListRow> rows);
    void ShowPage();
    int TabsHeight() const;
    void PlaceTabs(Placement& placement);
    void PlaceList(Placement& placement);
    void FitLabels();
    void ShowChosen();

    const Session& session_;
    HWND tabs_ = nullptr, chosen_ = nullptr;  // chosen_: the whole text of the selected row
    ListControl list_{*this};
    Box box_;    // of the whole pane
    Box inner_;  // without the tabs
    int dpi_ = 96;
    std::vector<size_t> answers_;  // of the device that is shown
};

}  // namespace vndiscover::host
