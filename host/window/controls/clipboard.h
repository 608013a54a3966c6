// Text on the clipboard.
#pragma once

#include <windows.h>

#include <string>

namespace vndiscover::host {

// Sent to the window that owns all others after each copy. wParam is a BOOL: it succeeded.
constexpr UINT kCopied = WM_APP + 2;

// Returns false if it fails, for example while another program uses the clipboard.
bool CopyText(HWND owner, const std::wstring& text);

}  // namespace vndiscover::host
