#include "window/dialog_texts.h"

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

}  // namespace vndiscover::host
