// A window that shows a report until its owner is closed, or Esc is pressed.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "window/controls/facts_list.h"

namespace vndiscover::host {

HWND OpenReport(HWND owner, const std::wstring& title, std::vector<ReportRow> rows);
// Has no effect if the user has closed the window.
void ReplaceReport(HWND window, std::vector<ReportRow> rows);

}  // namespace vndiscover::host
