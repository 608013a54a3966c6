// Text on the clipboard.
#pragma once

#include <windows.h>

#include <string>

namespace vndiscover::host {

// Reports to the window that owns all others, after each copying, whether it succeeded: wParam, a
// BOOL.
constexpr UINT kCopied = WM_APP + 2;

// Returns false if it fails, for example while another program uses the clipboard.
bool CopyText(HWND owner, const std::wstring& text);

}  // namespace vndiscover::host
