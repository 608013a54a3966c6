// Text on the clipboard: copying from any list, by keyboard and by a context menu.
#pragma once

#include <windows.h>

#include <string>

namespace vndiscover::host {

// Tells the window that owns all others, after each copying, whether it succeeded: wParam, a BOOL.
constexpr UINT kCopied = WM_APP + 2;

// False, also told as kCopied, if it fails, for example while another program uses the clipboard.
bool CopyText(HWND owner, const std::wstring& text);

// As a cell of rows to copy, without a formula that a spreadsheet would run.
std::wstring RowCell(const std::wstring& text);

constexpr LPARAM kByKeyboard = -1;  // the place of a WM_CONTEXTMENU

// The command for Ctrl+C, Ctrl+Shift+C or Ctrl+Shift+T in a list while `key` is pressed; otherwise
// 0.
int CopyCommandOf(WPARAM key);

bool IsList(HWND control);
// Below the selected row, on the screen.
POINT BelowSelected(HWND list);

// Executes IDM_COPY_ROW, IDM_COPY_TABLE, IDM_COPY_CELL for the second column, or IDM_CELL + column.
// Has no effect for another command, or without a selected row.
void CopyFromList(HWND list, int command);

// Handles WM_CONTEXTMENU from a list.
void ShowCopyMenu(HWND list, LPARAM place);

}  // namespace vndiscover::host
