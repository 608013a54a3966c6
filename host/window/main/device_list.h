// The list of devices in the main window.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <optional>
#include <string>
#include <vector>

#include "window/controls/list_control.h"
#include "window/main/window_state.h"

namespace vndiscover::host {

// A cell as it is shown. In a file, times have their date, counts are plain numbers, and states say
// nothing about supplies, which have their own columns.
std::wstring ShownText(const DeviceRow& row, Column column, bool isInFile = false);

class DeviceList : private ListModel, public ListControl {
  public:
    explicit DeviceList(WindowState& state)  // which must outlive it
        : ListControl(static_cast<ListModel&>(*this)), state_(state) {}

    // The columns for a user without settings.
    static void SetDefaults(Settings& settings);
    // The columns of files that a script writes; they stay the same whatever the window shows.
    static void SetForScripts(Settings& settings);
    void ShowColumns();        // as the state's settings say
    void SaveColumns() const;  // to the state's settings
    // The shown columns from left to right.
    std::vector<Column> Columns() const;

    // Shows the session's rows, selection and order.
    void Show();
    // Sorts in the other direction, even if the column is hidden.
    void Reverse();
    // Handles WM_NOTIFY about a click on a cell.
    void OnNotify(const NMHDR& header);
    // Handles WM_CONTEXTMENU from the list or its header. The main window gets the commands.
    void ShowMenu(LPARAM place);

    // The column of the cell that was clicked last.
    Column ChosenColumn() const { return chosenColumn_; }

  private:
    size_t Count() const override;
    std::wstring CellText(size_t row, size_t column) const override;
    std::wstring SearchText(size_t row) const override;
    std::optional<LevelBar> Bar(size_t row, size_t column) const override;
    bool IsGrey(size_t row) const override;
    std::wstring EmptyText() const override;
    void OnSelection() override;
    void OnSelected() override {
        if (Selected() >= 0) state_.onSelected();
    }
    void OnHeading(size_t column) override;

    // The list has shown columns only, so its indexes differ from those of all columns.
    Column At(size_t index) const { return index < shown_.size() ? shown_[index] : Column::kName; }
    void MarkSorted();

    WindowState& state_;
    std::vector<Column> shown_;  // by their indexes in the list
    Column chosenColumn_ = Column::kAddress;
};

}  // namespace vndiscover::host
