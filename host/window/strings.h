// The texts of the window, from its string table.
#ifndef VNDISCOVER_HOST_WINDOW_STRINGS_H
#define VNDISCOVER_HOST_WINDOW_STRINGS_H

#include <initializer_list>
#include <string>

namespace vndiscover::host {

std::wstring Text(unsigned id);
// With %1 to %9 replaced. What is put in is data: a "%1" within it stays.
std::wstring Text(unsigned id, std::initializer_list<std::wstring> values);

// Changes every text, for tests of longer languages. Null: none.
using TextChange = std::wstring (*)(std::wstring text);
void SetTextChange(TextChange change);

// "2026-11-25T04:32:23Z" as the user writes date and time; any other text as it is.
std::wstring LocalTime(const std::string& utc);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_STRINGS_H
