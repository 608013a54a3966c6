// A window that reads a subtree of one device's variables.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "window/dialogs/dialogs.h"
#include "window/work/results.h"

namespace vndiscover::host {

class WalkWindow : private ListDialog {
  public:
    struct Actions {
        std::function<void(const AskTarget& target, const Oid& root, unsigned walk)> start;
        std::function<void()> stop;
    };
    explicit WalkWindow(Actions actions) : actions_(std::move(actions)) {}

    // Opens the window for a device, or brings it to the front. Stops the walk of another device.
    void Open(HWND owner, AskTarget target);
    // Handle what the workers report; see Results. Walks that are not shown are ignored.
    void OnBegan(unsigned walk);
    void Add(unsigned walk, Answer variable);
    void OnEnded(unsigned walk, const WalkEnd& end, const std::string& problem);
    // Shows what was added since the last time.
    void Refresh();

  private:
    enum class State { kIdle, kWaiting, kWalking, kStopping };

    void Begin() override;
    void OnFonts() override { FitFields({IDC_WALK_ROOT}); }
    void OnCommand(int id) override;
    void OnClosed() override;
    bool IsShown(unsigned walk) const;
    void Start();
    void Stop();
    void ShowState(const std::wstring& text);
    void OnSelected() override;
    size_t Count() const override { return values_.size(); }
    std::wstring CellText(size_t row, size_t column) const override;

    Actions actions_;
    AskTarget target_;
    State state_ = State::kIdle;
    unsigned walk_ = 0;  // number of the one that is shown
    ULONGLONG startMs_ = 0;
    std::vector<Answer> values_;
};

}  // namespace vndiscover::host
