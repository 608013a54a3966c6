// A list of texts in columns that computes only the cells that are seen.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <string>
#include <vector>

namespace vndiscover::host {

struct TableColumn {
    unsigned heading;  // its string
    int width;         // in pixels at 96 DPI
};

class TableList {
  public:
    using CellText = std::function<std::wstring(size_t row, size_t column)>;

    // The list is a child of `parent` and is destroyed with it.
    void Create(HWND parent, int id);
    // Uses a list of a dialog.
    void Attach(HWND list);
    HWND Handle() const { return list_; }
    // Begins an empty table. Its name is for screen readers.
    void Begin(const std::wstring& name, const std::vector<TableColumn>& columns, int dpi);
    // Gives the last column the rest of the width, but `minimum` pixels at least.
    void Fit(int minimum);
    // The cells must remain until the next call.
    void Show(size_t rows, CellText cell);
    // Handles WM_NOTIFY from this list.
    void OnNotify(NMHDR* header) const;

  private:
    HWND list_ = nullptr;
    size_t rows_ = 0, columns_ = 0;
    CellText cell_;
};

}  // namespace vndiscover::host
