// The details of the selected device, as pages chosen by tabs.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "window/controls/facts_list.h"
#include "window/controls/list_control.h"
#include "window/controls/placement.h"
#include "window/work/session.h"

namespace vndiscover::host {

using TableRows = std::vector<std::vector<std::wstring>>;
struct DevicePage;

class DetailsPane : private FactsModel {
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
    HWND List() const { return list_.Handle(); }
    // Chooses the next page (1) or the one before (-1).
    void Turn(int pages);
    // Handles WM_NOTIFY from the tabs.
    void OnNotify(const NMHDR& header);

  private:
    // Of the summary, or of the table of another page.
    size_t Count() const override { return rows_.empty() ? table_.size() : rows_.size(); }
    std::wstring CellText(size_t row, size_t column) const override {
        return rows_.empty() ? table_[row][column] : FactsModel::CellText(row, column);
    }
    std::optional<LevelBar> Bar(size_t row, size_t column) const override {
        return rows_.empty() ? std::nullopt : FactsModel::Bar(row, column);
    }
    bool IsBold(size_t row) const override { return !rows_.empty() && FactsModel::IsBold(row); }
    std::wstring EmptyText() const override;
    void OnSelected() override { UpdateList(); }
    const DevicePage& Page() const;
    void ShowRows(std::vector<ReportRow> rows, TableRows table);
    void ShowPage();
    int TabsHeight() const;
    void PlaceTabs(Placement& placement);
    void PlaceList(Placement& placement);
    void UpdateList();  // after another selection

    const Session& session_;
    HWND tabs_ = nullptr, chosen_ = nullptr;  // the latter: the whole text of the selected row
    ListControl list_{*this};
    TableRows table_;
    Box box_;             // of all
    Box whole_, placed_;  // with the text of the chosen row, and the list alone
    int dpi_ = 96;
    std::vector<size_t> answers_;  // of the device that is shown
};

}  // namespace vndiscover::host
