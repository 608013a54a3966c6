// The texts of a dialog, from the string table.
#ifndef VNDISCOVER_HOST_WINDOW_DIALOG_TEXTS_H
#define VNDISCOVER_HOST_WINDOW_DIALOG_TEXTS_H

#include <windows.h>

namespace vndiscover::host {

// Sets the title, and the text of each control whose number is that of a string; OK and Cancel
// likewise.
void SetDialogTexts(HWND dialog, unsigned title);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_DIALOG_TEXTS_H
