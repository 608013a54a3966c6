// Takes the texts of a dialog from the string table.
#ifndef VNDISCOVER_HOST_WINDOW_DIALOG_TEXTS_H
#define VNDISCOVER_HOST_WINDOW_DIALOG_TEXTS_H

#include <windows.h>

namespace vndiscover::host {

// Sets the title, the text of each control that has the number of a string, and OK and Cancel.
void SetDialogTexts(HWND dialog, unsigned title);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_DIALOG_TEXTS_H
