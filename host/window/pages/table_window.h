// A window with a table that is sorted by a click on a heading or by a key, copied, and saved as
// CSV: a comparison, or the changes of a watched list.
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
    // Replaces what the window showed, and has no rows yet.
    void Open(HWND owner, const std::wstring& title, std::vector<ListColumn> columns);
    // Shows rows, in the order that the user chose, and a line above them, if it is open. Rows
    // with a time, such as "2026-11-25T04:32:23Z", must come newest first.
    void Show(const std::wstring& note, std::vector<ListRow> rows);

  private:
    size_t Count() const override { return order_.size(); }
    std::wstring CellText(size_t row, size_t column) const override;
    bool IsTime(size_t column) const { return form_.columns[column].heading == IDS_CALL_TIME; }
    void OnHeading(size_t column) override;
    void OnSelected() override;
    ListRow Chosen() const;  // without cells: none
    // Sorts the rows, and selects this one.
    void Arrange(const ListRow& chosen);
    void OnCommand(int id) override;

    std::function<void(const std::string& csv)> save_;
    std::vector<size_t> order_;  // indexes in rows_
    size_t sorted_ = SIZE_MAX;   // the column; SIZE_MAX: as they came
    bool isDescending_ = false;
};

// A CSV document, with the list separator of the user's settings.
std::string CsvText(const std::vector<std::wstring>& headings, size_t rows,
                    const std::function<std::wstring(size_t row, size_t column)>& cell);

}  // namespace vndiscover::host
