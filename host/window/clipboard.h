// Text on the clipboard.
#ifndef VNDISCOVER_HOST_WINDOW_CLIPBOARD_H
#define VNDISCOVER_HOST_WINDOW_CLIPBOARD_H

#include <windows.h>

#include <string>

namespace vndiscover::host {

// Has no effect while another program uses the clipboard.
void CopyText(HWND owner, const std::wstring& text);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_CLIPBOARD_H
