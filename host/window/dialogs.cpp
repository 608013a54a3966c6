#include "window/dialogs.h"

#include "platform/wide_text.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void SetDialogTexts(HWND dialog, unsigned title) {
    SetWindowTextW(dialog, Text(title).c_str());
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(child);
        const int text = id == IDOK ? IDS_OK : id == IDCANCEL ? IDS_CANCEL : id;
        if (text >= IDS_TITLE) SetWindowTextW(child, Text(static_cast<unsigned>(text)).c_str());
    }
}

void Tell(HWND owner, const std::wstring& problem, bool isScript) {
    if (!isScript) {
        MessageBoxW(owner, problem.c_str(), Text(IDS_TITLE).c_str(), MB_OK | MB_ICONWARNING);
        return;
    }
    const std::string text = "VnBrowser: " + ToUtf8(problem) + "\n";
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()),
              &written, nullptr);
}

}  // namespace vndiscover::host
