// A window that shows a report until its owner is closed, or Esc is pressed.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "window/controls/facts_list.h"

namespace vndiscover::host {

HWND OpenPage(HWND owner, const std::wstring& title, std::vector<ReportRow> rows);
// Replaces the rows of a page; has no effect if the user has closed it.
void ShowInPage(HWND page, std::vector<ReportRow> rows);

}  // namespace vndiscover::host
