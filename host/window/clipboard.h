// Text on the clipboard.
#ifndef VNDISCOVER_HOST_WINDOW_CLIPBOARD_H
#define VNDISCOVER_HOST_WINDOW_CLIPBOARD_H

#include <windows.h>

#include <string>

namespace vndiscover::host {

// Tells the window that owns all others, after each copying, whether it succeeded: wParam, a BOOL.
constexpr UINT kCopied = WM_APP + 2;

// False, also told as kCopied, if it fails, for example while another program uses the clipboard.
bool CopyText(HWND owner, const std::wstring& text);

// As a cell of rows to copy, without a formula that a spreadsheet would run.
std::wstring RowCell(const std::wstring& text);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_CLIPBOARD_H
