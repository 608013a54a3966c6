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

// A cell as it is shown; in a file, times are whole, counts are plain numbers, and states have no
// words of supplies, which have columns of their own.
std::wstring ShownText(const DeviceRow& row, Column column, bool isInFile = false);

class DeviceList : private ListModel, public ListControl {
  public:
    explicit DeviceList(WindowState& state)  // which must outlive it
        : ListControl(static_cast<ListModel&>(*this)), state_(state) {}

    // What a user without settings gets.
    static void SetDefaults(Settings& settings);
    // The files that a script has written do not depend on what a window shows.
    static void SetForScripts(Settings& settings);
    // From the state's settings, and to them.
    void ShowColumns();
    void SaveColumns() const;
    // As they are shown, from left to right.
    std::vector<Column> Columns() const;

    // Updates rows, selection and headings from the session.
    void Show();
    // Sorts the other way round, also by a column that is not shown.
    void Reverse();
    // Handles WM_NOTIFY that a cell was clicked.
    void OnNotify(const NMHDR& header);
    // Handles WM_CONTEXTMENU from the list or its header; the commands go to the parent.
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

    // The list has only the columns that are shown, so that their numbers are others there.
    Column At(size_t index) const { return index < shown_.size() ? shown_[index] : Column::kName; }
    void MarkSorted();

    WindowState& state_;
    std::vector<Column> shown_;  // in the order of Column, as in the list
    Column chosenColumn_ = Column::kAddress;
};

}  // namespace vndiscover::host
