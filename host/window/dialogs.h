// What dialogs and messages have in common.
#ifndef VNDISCOVER_HOST_WINDOW_DIALOGS_H
#define VNDISCOVER_HOST_WINDOW_DIALOGS_H

#include <windows.h>

#include <string>

namespace vndiscover::host {

std::wstring WindowText(HWND window);
// Sets a text that is not shown already: no flicker, and an edit control keeps its place.
void ChangeText(HWND window, const std::wstring& text);

// Sets the title, the text of each control that has the number of a string, and OK and Cancel.
void SetDialogTexts(HWND dialog, unsigned title);

// Tells a user of a problem in a message, or a script on the error output.
void Tell(HWND owner, const std::wstring& problem, bool isScript);

// Asks whether to save the scan: IDYES, IDNO or IDCANCEL.
int AskToSave(HWND owner);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_DIALOGS_H
