// A window with the module's calls that the program has made, each as text to copy.
#pragma once

#include <windows.h>

#include <deque>
#include <string>

#include "model/asking/call_text.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"

namespace vndiscover::host {

class CallsWindow : private ListDialog {
  public:
    // The last thousand calls stay. Successive calls of one walk are one row.
    void Add(Call call);
    // Shows the calls that were added since the last time.
    void Refresh();
    void Open(HWND owner);

  private:
    void OnOpened() override;
    void OnCommand(int id) override;
    void OnSelected() override;
    void OnClosed() override { fixed_.Reset(); }
    void OnFonts() override;
    size_t Count() const override { return calls_.size(); }
    std::wstring CellText(size_t row, size_t column) const override;

    std::deque<Call> calls_;  // the newest first, as in the list
    size_t added_ = 0;        // rows since the last Refresh
    bool isFolded_ = false;   // since the last Refresh, a call was added to an existing row
    OwnedFont fixed_;         // the font of the text while the dialog is open
};

}  // namespace vndiscover::host
