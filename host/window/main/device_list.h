// The list of devices in the main window.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <string>
#include <utility>

#include "window/main/device_columns.h"
#include "window/work/session.h"

namespace vndiscover::host {

class DeviceList {
  public:
    struct Actions {
        std::function<void()> onSelected;     // the user has selected a row
        std::function<unsigned()> emptyText;  // the string to show without rows
    };
    // The session must outlive the list.
    DeviceList(Session& session, Actions actions)
        : session_(session), actions_(std::move(actions)) {}
    // The list is a child of `parent` and is destroyed with it.
    void Create(HWND parent);
    HWND Handle() const { return list_; }
    void SetDpi(int dpi);

    void ShowColumns(const Settings& settings);
    void StoreColumns(Settings& settings) const { columns_.Store(settings, dpi_); }
    const DeviceColumns& Columns() const { return columns_; }

    // Updates rows, selection and headings from the session.
    void Show();
    // Handles WM_NOTIFY from the list and returns the result of the message.
    LRESULT OnNotify(NMHDR* header);
    // Handles WM_CONTEXTMENU from the list or its header; the commands go to the parent.
    void ShowMenu(LPARAM place);

    // Texts as they are shown; RowText and TableText with tabs and line ends. ChosenColumn is that
    // of the cell that was clicked last.
    Column ChosenColumn() const { return chosenColumn_; }
    std::wstring CellText(const DeviceRow& row, Column column) const;
    std::wstring RowText(const DeviceRow& row) const;
    std::wstring TableText() const;

  private:
    void FillCell(LVITEMW& item) const;
    LRESULT DrawCell(NMLVCUSTOMDRAW& draw) const;
    void ClickColumn(int column);
    void OnSelected();

    Session& session_;
    Actions actions_;
    HWND list_ = nullptr;
    DeviceColumns columns_;
    Column chosenColumn_ = Column::kAddress;
    int dpi_ = 96;
    bool isShowing_ = false;  // the selection is set by the program
};

}  // namespace vndiscover::host
