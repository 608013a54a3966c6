// Cells of CSV documents, whose readers are often spreadsheets.
#pragma once

#include <string>
#include <string_view>

namespace vndiscover::host {

// In quotes, with quotes doubled as in RFC 4180. An apostrophe is put before text that a
// spreadsheet would run as a formula.
std::string CsvCell(std::string_view text);

// For a cell of copied rows, which are separated by tabs: only the apostrophe.
std::string HarmlessCell(std::string_view text);

}  // namespace vndiscover::host
