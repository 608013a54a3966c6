// Text on the clipboard.
#pragma once

#include <windows.h>

#include <string>

namespace vndiscover::host {

// Sent to the main window after each copy. wParam: whether the copy succeeded.
constexpr UINT kCopied = WM_APP + 2;

// Returns false on failure, for example while another program uses the clipboard.
bool CopyText(HWND owner, const std::wstring& text);

}  // namespace vndiscover::host
