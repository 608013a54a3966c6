// Commands on devices.
#pragma once

#include <string>
#include <vector>

#include "model/scan/columns.h"
#include "window/main/window_state.h"

namespace vndiscover::host {

class MainWindow;

// Reads the selected device next. `isAgain`: the user wants it, even if it has not answered here.
void ReadSelected(WindowState& state, bool isAgain);
// Reads for the list what the last search has found.
void ReadFound(WindowState& state);
// Adds and reads addresses, and reports the names without one. `areFoundRead`: the end of a running
// search reads them too.
void ReadAdded(WindowState& state, const Results::Addresses& addresses,
               std::vector<std::string> unknown, bool areFoundRead);

constexpr size_t kMaxWebPages = 10;  // that open at once
// The latest IPv4 address of each selected device that has one.
std::vector<std::string> WebAddresses(const Session& session);
// Copies this cell of each selected row, in a line of its own.
void CopyCell(WindowState& state, Column column);

// Commands of the table. It has checked that they can run.
void ReadAgain(MainWindow& window);  // the selected device, or several for the list
void ReadShown(MainWindow& window);  // for the list
void DiagnoseDevice(MainWindow& window);
void DiagnoseComputer(MainWindow& window);
void Walk(MainWindow& window);
void Split(MainWindow& window);
void AddByHand(MainWindow& window);
void OpenWebPages(MainWindow& window);

}  // namespace vndiscover::host
