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
    bool isBold = false;            // what is worst, or the result of all
    std::wstring detail{};          // shown of the selected row only
    bool hasCounts = false;         // in a table, before and after: shown grouped
    bool operator==(const ListRow& other) const {
        return cells == other.cells && bar == other.bar && isBold == other.isBold &&
               detail == other.detail && hasCounts == other.hasCounts;
    }
};
// Of a report, each with a label and a text. Bold are the result, which is the first row, others
// with its label, and what is critical.
std::vector<ListRow> ListRowsOf(const Report& report);

// Has its rows ready, or overrides Count and CellText, which are asked for what is visible.
class ListModel {
  public:
    virtual ~ListModel() = default;
    virtual size_t Count() const { return rows_.size(); }
    // `column`: a number in the list, as in the other methods.
    virtual std::wstring CellText(size_t row, size_t column) const {
        return rows_[row].cells[column];
    }
    // What the text of the selected row has besides its cells.
    virtual std::wstring Detail(size_t row) const {
        return row < rows_.size() ? rows_[row].detail : L"";
    }
    // By what typed letters find the row.
    virtual std::wstring SearchText(size_t row) const { return CellText(row, 0); }
    // Drawn before the text.
    virtual std::optional<LevelBar> Bar(size_t row, size_t column) const {
        return column == 1 && row < rows_.size() ? rows_[row].bar : std::nullopt;
    }
    virtual bool IsBold(size_t row) const { return row < rows_.size() && rows_[row].isBold; }
    // Whether the row is grey: what it shows may no longer be so.
    virtual bool IsGrey(size_t) const { return false; }
    // What to show instead of rows if there are none.
    virtual std::wstring EmptyText() const { return {}; }
    // The user has selected other rows; and, afterwards, another one or none has the focus of them.
    virtual void OnSelection() {}
    virtual void OnSelected() {}
    virtual void OnHeading(size_t) {}  // the user has clicked it

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
    // Makes a child of `parent`, which destroys it. Screen readers read the name. In a list of many
    // rows, the user may select several and reorder columns.
    void Create(HWND parent, int id, const std::wstring& name, bool isOfMany = false);
    // Uses a list of a dialog.
    void Attach(HWND list);
    // The list of this window; null if it is none.
    static ListControl* Of(HWND window);
    HWND Handle() const { return list_; }

    // Sets the height of rows, high enough for bars, and scales the columns.
    void SetDpi(int dpi);
    void SetColumns(const std::vector<ListColumn>& columns);
    // The columns from left to right.
    std::vector<int> ShownOrder() const;
    // Gives the column of values, otherwise the last one, the rest of the width, as Refresh does
    // too.
    void Fit();
    // In pixels; of the column that has the rest, what it has without it.
    int WidthOf(int column) const;
    void SetName(const std::wstring& name) { SetWindowTextW(list_, name.c_str()); }
    // Shows what the model has now.
    void Refresh();
    // What is shown in place of rows.
    std::wstring EmptyText() const { return model_.Count() == 0 ? model_.EmptyText() : L""; }
    std::vector<size_t> Selection() const;
    // The one with the focus, or else the first; -1: none.
    int Selected() const;
    // Selecting by a call is not reported to the model.
    void Select(const std::vector<size_t>& rows, int focused);
    void Select(int row);

    // Marks the heading of the column by which the rows are sorted; -1: none.
    void MarkSorted(int column, bool isDescending);
    // As by clicks: by the next column to the right, or, with Shift, the other way round.
    void SortByNext() const;
    void SortByKey() const;

    // The text to copy: with tabs and line ends, columns as they are shown, and without formulas
    // that a spreadsheet would run.
    std::wstring TableText() const;
    // The selected row in one text; empty if there is none.
    std::wstring SelectedText() const;
    // Executes IDM_COPY_ROW for the selected rows, IDM_COPY_TABLE, IDM_COPY_CELL for the second
    // column, or IDM_CELL + column. Has no effect without a selected row.
    void Copy(int command) const;
    // The command for Ctrl+C, Ctrl+Shift+C or Ctrl+Shift+T while `key` is pressed; otherwise 0.
    static int CopyCommandOf(WPARAM key);

    // Handles WM_NOTIFY from the list and returns the result of the message.
    LRESULT OnNotify(NMHDR* header);
    // Offers to copy, at the place of a WM_CONTEXTMENU.
    void ShowCopyMenu(LPARAM place);
    // The cell of a WM_CONTEXTMENU, and where to open the menu. Returns false if no row is there.
    // By keyboard, the menu opens below the selected row, and there is no column.
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
    HFONT boldOf_ = nullptr;   // the list's font, of which that is the bold one
    OwnedImages images_;       // none: their size is that of a row
    bool isChanging_ = false;  // by a call
    int reported_ = -1;        // the selected row that the model knows of
    int values_ = -1;          // the column of values; -1: none
    int sorted_ = -1;          // the column that is marked
    std::vector<std::wstring> headings_;
    // The column that has the rest of the width, and its widths with and without it.
    int fitted_ = -1, fittedWidth_ = 0, ownWidth_ = 0;
};

// Handles a message from a list to its window. Empty: the message is from no list.
std::optional<LRESULT> HandleListMessage(UINT message, WPARAM wParam, LPARAM lParam);

constexpr LPARAM kByKeyboard = -1;  // the place of a WM_CONTEXTMENU

}  // namespace vndiscover::host
