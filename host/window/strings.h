// The texts of the window are in its string table; see texts.inc. Texts elsewhere are names that no
// language translates (SNMPv3, C++) and words that the console shows too: states of the MIBs,
// diagnoses, reports, and the reasons why requests and files failed.
#pragma once

#include <windows.h>

#include <cstdint>
#include <ctime>
#include <initializer_list>
#include <string>

namespace vndiscover::host {

std::wstring Text(unsigned id);
// Without the '&' that marks its letter in a menu.
std::wstring HeadingText(unsigned id);
// Replaces %1 to %9 by the values, and "[one|many]" by "one" after a value of 1, otherwise by
// "many". What a value contains is not replaced again.
std::wstring Text(unsigned id, std::initializer_list<std::wstring> values);

// With the separators of the user's settings: "12,345".
std::wstring Grouped(uint64_t count);
// Groups the counts before the first comma: "30 % (3,000 of 10,000)". A device's words follow it.
std::wstring GroupedCounts(const std::wstring& text);

// Converts line breaks to those of an edit control.
std::wstring EditText(const std::string& text);

// Makes Text return changed texts, to test longer languages. Null: no change.
using TextChange = std::wstring (*)(std::wstring text);
void SetTextChange(TextChange change);
// Changes the texts of a dialog in the same way.
void ChangeTexts(HWND dialog);

// A time such as "2026-11-25T04:32:23Z" in the user's format. Any other text is returned unchanged.
// `flags`: of GetTimeFormat. `isShort`: leaves out today's date.
std::wstring LocalTime(const std::string& utc, DWORD flags = 0, bool isShort = false);
// A local time in the same format, without seconds and without today's date.
std::string SystemTime(const std::tm& local);

}  // namespace vndiscover::host
