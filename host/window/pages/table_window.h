// A window with a table, which the user can sort, copy and save as CSV: a comparison or a list of
// changes.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "window/dialogs/dialogs.h"

namespace vndiscover::host {

class TableWindow : public ListDialog {
  public:
    // `save` asks for a file and saves the text of a CSV document.
    explicit TableWindow(std::function<void(const std::string& csv)> save)
        : save_(std::move(save)) {}
    // Opens the window without rows.
    void Open(HWND owner, const std::wstring& title, std::vector<ListColumn> columns);
    // Shows a note and rows, which are sorted as the user chose. Has no effect if the window is
    // closed. Rows with a time, such as "2026-11-25T04:32:23Z", must come newest first.
    void Show(const std::wstring& note, std::vector<ListRow> rows);

  private:
    size_t Count() const override { return order_.size(); }
    std::wstring CellText(size_t row, size_t column) const override;
    bool IsTime(size_t column) const { return form_.columns[column].heading == IDS_CALL_TIME; }
    void OnHeading(size_t column) override;
    void OnSelected() override;
    ListRow Chosen() const;  // the selected row; without cells: none
    // Sorts the rows and selects this one.
    void Arrange(const ListRow& chosen);
    void OnCommand(int id) override;

    std::function<void(const std::string& csv)> save_;
    std::vector<size_t> order_;  // indexes in rows_
    size_t sorted_ = SIZE_MAX;   // the column to sort by; SIZE_MAX: none
    bool isDescending_ = false;
};

// A CSV document, with the list separator of the user's settings. `headings`: their strings.
std::string CsvText(const std::vector<unsigned>& headings, size_t rows,
                    const std::function<std::wstring(size_t row, size_t column)>& cell);

}  // namespace vndiscover::host
