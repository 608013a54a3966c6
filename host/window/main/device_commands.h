// The commands on devices.
#pragma once

#include <string>
#include <vector>

#include "model/scan/columns.h"
#include "window/main/window_state.h"

namespace vndiscover::host {

class MainWindow;

// Reads the selected device next. `isAgain`: the user says so. Otherwise only if it has answered
// here.
void ReadSelected(WindowState& state, bool isAgain);
// Reads, for the list, what the last search has found. Returns false if there is nothing to read.
bool ReadFound(WindowState& state);
// Reads added addresses; `unknown` has none.
// `areFoundRead`: after a search, whatever is known then.
void ReadAdded(WindowState& state, const Results::Addresses& addresses, const std::string& unknown,
               bool areFoundRead);

constexpr size_t kMaxWebPages = 10;  // at once
// The latest IPv4 address of each selected device that has one.
std::vector<std::string> WebAddresses(const Session& session);
// A line for each selected row.
void CopyCell(WindowState& state, Column column);

// Rows of the table of commands, which has checked that they are possible.
void ReadAgain(MainWindow& window);  // the selected device, or several for the list
void ReadShown(MainWindow& window);  // for the list
void DiagnoseDevice(MainWindow& window);
void DiagnoseComputer(MainWindow& window);
void Walk(MainWindow& window);
void Split(MainWindow& window);
void AddByHand(MainWindow& window);
void OpenWebPages(MainWindow& window);

}  // namespace vndiscover::host
