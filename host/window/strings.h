// The texts of the window in its string table; see texts.inc. Elsewhere are only names that no
// language translates (SNMPv3, C++), and the words that the model shares with the console: of the
// MIBs' states, of diagnoses and reports, and the reasons of failed requests and files.
#pragma once

#include <windows.h>

#include <cstdint>
#include <ctime>
#include <initializer_list>
#include <string>

namespace vndiscover::host {

std::wstring Text(unsigned id);
// Without the mark of the letter that selects it in a menu.
std::wstring HeadingText(unsigned id);
// Replaces %1 to %9, and "[one|many]" by one of them, as the number before it asks. What a value
// contains is not replaced again.
std::wstring Text(unsigned id, std::initializer_list<std::wstring> values);

// With the separators of the user's settings: "12,345".
std::wstring Grouped(uint64_t count);
// The counts in it, which stand before what a device says in words: "30 % (3,000 of 10,000)".
std::wstring GroupedCounts(const std::wstring& text);

// With the line breaks of an edit control.
std::wstring EditText(const std::string& text);

// Changes every text, to test longer languages. Null: no change.
using TextChange = std::wstring (*)(std::wstring text);
void SetTextChange(TextChange change);
// Changes those of a dialog in the same way.
void ChangeTexts(HWND dialog);

// For files: "2026-11-25T04:32:23Z" in the user's format of date and time; any other text
// unchanged. `flags`: of GetTimeFormat, TIME_NOSECONDS. `isShort`: without the date if it is
// today's.
std::wstring LocalTime(const std::string& utc, DWORD flags = 0, bool isShort = false);
// A local time in that format, without seconds, and without the date if it is today's.
std::string SystemTime(const std::tm& local);

}  // namespace vndiscover::host
