// The list of devices in the main window.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/scan/compare.h"
#include "model/scan/device_view.h"
#include "window/controls/list_control.h"
#include "window/store/settings.h"
#include "window/work/session.h"

namespace vndiscover::host {

// The columns of the device list: which are shown, in which order, how wide.

// The heading of a column.
std::wstring ColumnName(Column column);

// A cell as it is shown.
std::wstring ShownText(const DeviceRow& row, Column column);

// Numbers of columns in the list are not those of Column, since the list has only those shown.
class DeviceColumns {
  public:
    // What a user without settings gets.
    static void SetDefaults(Settings& settings);

    // The files that a script has written do not depend on what a window shows.
    static void SetForScripts(Settings& settings);

    // The list must outlive it.
    void Use(ListControl& list) { list_ = &list; }
    void Show(const Settings& settings);
    void Store(Settings& settings, int dpi) const;

    Column At(size_t index) const { return index < shown_.size() ? shown_[index] : Column::kName; }
    bool IsShown(Column column) const;
    // As they are shown, from left to right.
    std::vector<Column> InOrder() const;
    void MarkSorted(Column column, bool isDescending);

  private:
    ListControl* list_ = nullptr;
    std::vector<Column> shown_;  // in the order of Column, as in the list
};

class DeviceList : private ListModel {
  public:
    struct Actions {
        std::function<void()> onSelected;         // the user has selected another device
        std::function<std::wstring()> emptyText;  // what to show without rows
    };
    // Session and changes must outlive the list.
    DeviceList(Session& session, const ChangeLog& changes, Actions actions)
        : session_(session), changes_(changes), actions_(std::move(actions)) {}
    // The list is a child of `parent` and is destroyed with it.
    void Create(HWND parent);
    HWND Handle() const { return list_.Handle(); }
    void SetDpi(int dpi);

    void ShowColumns(const Settings& settings);
    void StoreColumns(Settings& settings) const { columns_.Store(settings, dpi_); }
    const DeviceColumns& Columns() const { return columns_; }

    // Updates rows, selection and headings from the session.
    void Show();
    // Handles WM_NOTIFY that a cell was clicked.
    void OnNotify(const NMHDR& header);
    // Handles WM_CONTEXTMENU from the list or its header; the commands go to the parent.
    void ShowMenu(LPARAM place);

    // The column of the cell that was clicked last.
    Column ChosenColumn() const { return chosenColumn_; }
    const ListControl& List() const { return list_; }

  private:
    size_t Count() const override { return session_.view.Count(); }
    std::wstring CellText(size_t row, size_t column) const override;
    std::optional<LevelBar> Bar(size_t row, size_t column) const override;
    bool IsGrey(size_t row) const override {
        const Standing::Kind kind = session_.view.Row(row).standing.kind;
        return kind == Standing::Kind::kMissed || kind == Standing::Kind::kNoAnswer;
    }
    std::wstring EmptyText() const override { return actions_.emptyText(); }
    void OnSelection() override;
    void OnSelected() override;
    void OnHeading(size_t column) override;

    Session& session_;
    const ChangeLog& changes_;
    Actions actions_;
    ListControl list_{*this};
    DeviceColumns columns_;
    Column chosenColumn_ = Column::kAddress;
    int dpi_ = 96;
};

}  // namespace vndiscover::host
