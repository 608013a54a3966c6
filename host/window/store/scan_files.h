// The files of the window. Paths are UTF-8; problems are texts for the user.
#pragma once

#include <windows.h>

#include <string>

#include "platform/owned.h"

namespace vndiscover::host {

// Asks the user for a file with this extension. Returns an empty path if none was chosen. Needs a
// thread with an Apartment. `kind`: the string that names such files.
std::string AskPath(HWND owner, unsigned kind, const wchar_t* extension,
                    const std::wstring& proposed, bool isForSaving);

// A file for a scan that was not saved when the Windows session ended. `number`: from 1 to
// kMaxRecoveryFiles.
std::string RecoveryPath(int number);
constexpr int kMaxRecoveryFiles = 50;
// Opens a file so that nobody else can. Returns an empty owner if that fails.
OwnedFile OpenExclusively(const std::string& path, DWORD disposition);

}  // namespace vndiscover::host
