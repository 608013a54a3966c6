// The files of the window. Paths are UTF-8; problems are texts for the user.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "model/scan/scan.h"
#include "platform/owned.h"

namespace vndiscover::host {

// Asks for a file with this extension, on a thread with an Apartment; `kind` is the string that
// names it. Empty if none was chosen.
std::string AskPath(HWND owner, unsigned kind, const wchar_t* extension,
                    const std::wstring& proposed, bool isForSaving);

// Returns nothing, with the reason in `problem`, if the file has no scan of this version.
std::optional<Scan> LoadScan(const std::string& path, std::wstring& problem);

// Where scans are kept that the end of the Windows session has left unsaved, each in a file with a
// number, from 1 on.
std::string KeptPath(int number);
constexpr int kMostKept = 50;
// Opens a file so that nobody else does. Empty if that is not possible.
OwnedFile HoldFile(const std::string& path, DWORD disposition);

}  // namespace vndiscover::host
