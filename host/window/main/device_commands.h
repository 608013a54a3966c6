// The commands on devices, and the windows that they open.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "window/controls/clipboard.h"
#include "window/main/device_list.h"
#include "window/main/window_state.h"
#include "window/pages/report_window.h"
#include "window/pages/walk_window.h"
#include "window/resource.h"

namespace vndiscover::host {

class DeviceCommands {
  public:
    // The state must outlive it.
    explicit DeviceCommands(WindowState& state);
    WalkWindow walk;
    DoctorWindow doctor;

    // Reads the selected device next. `isAgain`: the user says so. Otherwise only if it has
    // answered here.
    void Ask(bool isAgain);
    // Reads the selected device again, or several for the list.
    void ReadAgain();
    // Reads, for the list, the rows that are shown; or those that the last search has found.
    // Returns whether there are any.
    bool ReadShown();
    bool ReadFound();
    void Diagnose();
    void DiagnoseComputer();
    void Walk();
    void Split();
    // Asks for addresses; those that have been resolved are read.
    void AddByHand();
    void Added(const std::vector<std::pair<std::string, std::string>>& addresses,
               const std::string& unknown);
    static constexpr size_t kMaxWebPages = 10;  // at once
    // The first IPv4 address of each selected device that has one.
    std::vector<std::string> WebAddresses() const;
    void OpenWebPages();
    void CopyCell(Column column);

  private:
    std::vector<AskTarget> TargetsOf(const std::vector<size_t>& rows) const;
    bool ReadAll(const std::vector<AskTarget>& targets);

    WindowState& state_;
};

}  // namespace vndiscover::host
