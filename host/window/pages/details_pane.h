// The details of the selected device, as pages chosen by tabs.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "window/controls/facts_list.h"
#include "window/controls/list_control.h"
#include "window/work/session.h"

namespace vndiscover::host {

// The pages on the selected device as tables.

using TableRows = std::vector<std::vector<std::wstring>>;

struct DevicePage {
    unsigned title;  // its string, on the tab
    std::vector<ListColumn> columns;
    TableRows (*rows)(const Session& session, const DeviceRow& row);  // null: a report
    bool isOfAnswers;  // the rows change only with the device's answers
};

// In the order of the tabs.
const std::vector<DevicePage>& DevicePages();

class DetailsPane : private ListModel {
  public:
    // The session must outlive the pane.
    explicit DetailsPane(const Session& session) : session_(session) {}
    // The controls are children of `parent` and are destroyed with it.
    void Create(HWND parent);
    // Shows the selected device; the page stays.
    void Show();
    void Place(Placement& placement, const Box& box, int dpi);
    // Afterwards, when the controls are at their places.
    void Settle();
    HWND Shown() const { return Page().rows ? table_.Handle() : facts_.Handle(); }
    // Chooses the next page (1) or the one before (-1).
    void Turn(int pages);
    // Handles WM_NOTIFY from the tabs.
    void OnNotify(const NMHDR& header);

  private:
    // Of the table.
    size_t Count() const override { return rows_.size(); }
    std::wstring CellText(size_t row, size_t column) const override { return rows_[row][column]; }
    std::wstring EmptyText() const override;
    void OnSelected() override { UpdateLists(); }
    const DevicePage& Page() const;
    void ShowRows(TableRows rows);
    void ShowPage();
    int TabsHeight() const;
    void PlaceTabs(Placement& placement);
    void PlaceLists(Placement& placement);
    void UpdateLists();  // after another selection

    const Session& session_;
    HWND tabs_ = nullptr, chosen_ = nullptr;  // the latter: the whole text of the selected row
    FactsList facts_;                         // the summary
    ListControl table_{*this};                // the other pages
    TableRows rows_;
    Box box_;             // of all
    Box lists_, placed_;  // with the text of the chosen row, and the lists alone
    int dpi_ = 96;
    const DevicePage* page_ = nullptr;  // the one that is shown; null: none yet
    std::vector<size_t> answers_;       // of the device that is shown
};

}  // namespace vndiscover::host
