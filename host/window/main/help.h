// What is shown by other programs, and what this one says of itself.
#pragma once

#include "window/main/window_state.h"

namespace vndiscover::host {

// Opens a file or a web page with the user's program for it, or with the given one. Reports a
// failure.
void OpenElsewhere(WindowState& state, const std::wstring& target,
                   const wchar_t* program = nullptr);
// The page of the documents about this program.
void ShowHelp(WindowState& state);
// The versions of the program, the module and Windows.
void ShowAbout(HWND owner);

}  // namespace vndiscover::host
