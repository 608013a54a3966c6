// A window with a table that is sorted by a click on a heading, copied, and saved as CSV: a
// comparison, or the changes of a watched list.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "window/dialogs/dialogs.h"

namespace vndiscover::host {

class TableWindow : public ListDialog {
  public:
    using Row = std::vector<std::wstring>;  // a text for each column
    // `save` asks for a file and saves the text of a CSV document.
    explicit TableWindow(std::function<void(const std::string& csv)> save)
        : save_(std::move(save)) {}
    // `note` is a line above the table. Replaces what the window showed.
    void Open(HWND owner, const std::wstring& title, const std::wstring& note,
              std::vector<ListColumn> columns, std::vector<Row> rows);
    // Adds rows on top if it is open.
    void Show(std::vector<Row> rows);

  private:
    size_t Count() const override { return rows_.size(); }
    std::wstring CellText(size_t row, size_t column) const override { return rows_[row][column]; }
    void OnHeading(size_t column) override;
    void Begin() override;
    void OnCommand(int id) override;

    std::function<void(const std::string& csv)> save_;
    std::wstring title_, note_;
    std::vector<ListColumn> columns_;
    std::vector<Row> rows_;
    size_t sorted_ = SIZE_MAX;  // the column; SIZE_MAX: as they came
    bool isDescending_ = false;
};

// For CSV documents, that of the user's settings.
std::string ListSeparator();

}  // namespace vndiscover::host
