// The lists of all windows, and their models, which provide what a list shows.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <optional>
#include <string>
#include <vector>

#include "model/printer/report.h"
#include "window/controls/level_bar.h"
#include "window/controls/owners.h"

namespace vndiscover::host {

struct ListRow {
    std::vector<std::wstring> cells;
    std::optional<LevelBar> bar{};  // before the text of the second cell
    bool isBold = false;
    std::wstring detail{};   // shown only in the whole text of the selected row
    bool hasCounts = false;  // for TableWindow: the cells after the second one are counts
    bool operator==(const ListRow& other) const {
        return cells == other.cells && bar == other.bar && isBold == other.isBold &&
               detail == other.detail && hasCounts == other.hasCounts;
    }
};
// The rows of a report, each with a label and a text. The first row, which is the result, is bold.
// So are other rows with its label, and critical ones.
std::vector<ListRow> ListRowsOf(const Report& report);

// What a list shows: `rows_`, or what a derived class returns from Count and CellText. CellText is
// called only for a cell that is drawn, copied or searched.
class ListModel {
  public:
    virtual ~ListModel() = default;
    virtual size_t Count() const { return rows_.size(); }
    // `column`: its index in the list, as in the other methods.
    virtual std::wstring CellText(size_t row, size_t column) const {
        return rows_[row].cells[column];
    }
    // What the whole text of a row has besides its cells.
    virtual std::wstring Detail(size_t row) const {
        return row < rows_.size() ? rows_[row].detail : L"";
    }
    // The text by which typed letters find the row.
    virtual std::wstring SearchText(size_t row) const { return CellText(row, 0); }
    // A bar to draw before the text.
    virtual std::optional<LevelBar> Bar(size_t row, size_t column) const {
        return column == 1 && row < rows_.size() ? rows_[row].bar : std::nullopt;
    }
    virtual bool IsBold(size_t row) const { return row < rows_.size() && rows_[row].isBold; }
    // Grey shows that the values of a row may be out of date.
    virtual bool IsGrey(size_t) const { return false; }
    // What to show if there are no rows.
    virtual std::wstring EmptyText() const { return {}; }
    // The user has changed which rows are selected.
    virtual void OnSelection() {}
    // Called after OnSelection if the row of ListControl::Selected() has changed.
    virtual void OnSelected() {}
    virtual void OnHeading(size_t) {}  // the user has clicked a heading

  protected:
    std::vector<ListRow> rows_;
};

struct ListColumn {
    unsigned heading;  // its string
    int width;         // in pixels at 96 DPI
};

class ListControl {
  public:
    // The model must outlive the list.
    explicit ListControl(ListModel& model) : model_(model) {}
    ~ListControl();
    // Makes a child of `parent`, which destroys it. Screen readers read the name. `isOfMany`: the
    // user may select several rows and reorder columns.
    void Create(HWND parent, int id, const std::wstring& name, bool isOfMany = false);
    // Uses a list of a dialog.
    void Attach(HWND list);
    // The object of a list's window; null if the window is no list.
    static ListControl* Of(HWND window);
    HWND Handle() const { return list_; }

    // Sets the height of rows, high enough for bars, and scales the columns.
    void SetDpi(int dpi);
    void SetColumns(const std::vector<ListColumn>& columns);
    // The indexes of the columns from left to right.
    std::vector<int> ShownOrder() const;
    // Widens the column of values, or else the last one, to the rest of the list's width. Refresh
    // does this too.
    void Fit();
    // In pixels. For the column that Fit has widened: its width before.
    int WidthOf(int column) const;
    void SetName(const std::wstring& name) { SetWindowTextW(list_, name.c_str()); }
    // Shows what the model has now.
    void Refresh();
    // What is shown in place of rows; empty if there are rows.
    std::wstring EmptyText() const { return model_.Count() == 0 ? model_.EmptyText() : L""; }
    std::vector<size_t> Selection() const;
    // The selected row that has the focus, or else the first selected one; -1: none.
    int Selected() const;
    // The model gets no event for a selection by a call.
    void Select(const std::vector<size_t>& rows, int focused);
    void Select(int row);

    // Marks the heading of the column by which the rows are sorted; -1: none.
    void MarkSorted(int column, bool isDescending);
    // As if the user had clicked the heading of the next column to the right.
    void SortByNext() const;
    // For F9: sorts by the next column or, with Shift, in the other direction.
    void SortByKey() const;

    // The text to copy, with tabs and line ends. Columns are in their shown order. Formulas are
    // changed so that no spreadsheet runs them.
    std::wstring TableText() const;
    // The whole text of the selected row; empty if there is none.
    std::wstring SelectedText() const;
    // Executes IDM_COPY_ROW (the selected rows), IDM_COPY_TABLE, IDM_COPY_CELL (the second column)
    // or IDM_CELL + column. Has no effect if there is nothing to copy.
    void Copy(int command) const;
    // The command of `key` if it makes Ctrl+C, Ctrl+Shift+C or Ctrl+Shift+T; otherwise 0.
    static int CopyCommandOf(WPARAM key);

    // Handles WM_NOTIFY from the list and returns the result of the message.
    LRESULT OnNotify(NMHDR* header);
    // Opens a menu of copy commands at the place of a WM_CONTEXTMENU.
    void ShowCopyMenu(LPARAM place);
    // Finds the cell of a WM_CONTEXTMENU and where to open the menu. Returns false if no row is
    // there. By keyboard, the menu opens below the selected row, and there is no column.
    struct MenuPlace {
        POINT point;
        std::optional<size_t> column;
    };
    bool FindMenuPlace(LPARAM place, MenuPlace& found) const;

  protected:
    int dpi_ = 96;

  private:
    void OnChanged();
    void FillCell(LVITEMW& item) const;
    LRESULT Draw(NMLVCUSTOMDRAW& draw);
    LRESULT DrawCell(NMLVCUSTOMDRAW& draw);
    HFONT FontOf(size_t row);
    void DrawEmpty(HDC dc) const;
    void DrawSelection(const NMLVCUSTOMDRAW& draw) const;
    LRESULT FindRow(const NMLVFINDITEMW& search) const;
    std::wstring TextOf(int row, int column) const;
    std::wstring RowText(size_t row) const;

    ListModel& model_;
    HWND list_ = nullptr;
    OwnedFont bold_;
    HFONT boldOf_ = nullptr;   // the list's font when bold_ was made
    OwnedImages images_;       // contains none; their size sets the height of rows
    bool isChanging_ = false;  // a call changes the selection, not the user
    int reported_ = -1;        // what Selected() was when the model got its last event
    int values_ = -1;          // the column of values; -1: none
    int sorted_ = -1;          // the column that is marked; -1: none
    std::vector<std::wstring> headings_;
    // The column that Fit has widened (-1: none), its width since, and its width before.
    int fitted_ = -1, fittedWidth_ = 0, ownWidth_ = 0;
};

// Handles a message from a list to its window. Returns nothing if it is from no list.
std::optional<LRESULT> HandleListMessage(UINT message, WPARAM wParam, LPARAM lParam);

constexpr LPARAM kByKeyboard = -1;  // the place of a WM_CONTEXTMENU

}  // namespace vndiscover::host
