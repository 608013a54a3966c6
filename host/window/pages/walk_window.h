// A window that reads a subtree of one device's variables.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "window/dialogs/dialogs.h"
#include "window/work/workers.h"

namespace vndiscover::host {

class WalkWindow : private ListDialog {
  public:
    // `workers`: null while the main window closes.
    explicit WalkWindow(const std::unique_ptr<Workers>& workers) : workers_(workers) {}

    // Opens the window for a device, or brings it to the front. Stops the walk of another device.
    // `name`: for the title.
    void Open(HWND owner, AskTarget target, const std::wstring& name);
    // Handle what the workers report; see Results. Other walks than the shown one are ignored.
    void OnBegan(unsigned walk);
    void Add(unsigned walk, Answer variable);
    void OnEnded(unsigned walk, const WalkEnd& end, const std::string& problem);
    // Shows what was added since the last time.
    void Refresh();

  private:
    enum class State { kIdle, kWaiting, kWalking, kStopping };

    void OnOpened() override;
    void OnFonts() override { FitFields({IDC_WALK_ROOT}); }
    void OnCommand(int id) override;
    void OnClosed() override;
    bool IsShown(unsigned walk) const;
    void Start();
    void Stop();
    size_t Count() const override { return values_.size(); }
    std::wstring CellText(size_t row, size_t column) const override;

    const std::unique_ptr<Workers>& workers_;
    AskTarget target_;
    State state_ = State::kIdle;
    unsigned walk_ = 0;  // the number of the shown one
    ULONGLONG startMs_ = 0;
    std::vector<Answer> values_;
};

}  // namespace vndiscover::host
