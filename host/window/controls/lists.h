// What the list controls have in common.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

namespace vndiscover::host {

// Makes a list that asks for its texts; its name is for screen readers. `extended`: list styles
// beyond those that all lists have.
HWND MakeList(HWND parent, int id, const std::wstring& name, DWORD extended = 0);
// The styles of MakeList for a list of a dialog.
void StyleList(HWND list, DWORD extended = 0);

// Adds a column after those that are there.
void AddColumn(HWND list, const std::wstring& heading, int width);
int CountColumns(HWND list);

// Answers LVN_GETDISPINFO for a text.
void GiveText(LVITEMW& item, const std::wstring& text);
// Answers LVN_GETEMPTYMARKUP with what a list without rows shows.
LRESULT GiveEmptyText(NMHDR* header, unsigned text);

void SelectRow(HWND list, int row);
int SelectedRow(HWND list);  // -1: none

// Makes the rows of a list high enough for bars, and all lists alike.
void SetRowHeight(HWND list, int dpi);
// The list owns its image list, the caller the previous one.
void SetImages(HWND list, HIMAGELIST images);

}  // namespace vndiscover::host
