// What windows, dialogs and messages have in common.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "window/controls/list_control.h"
#include "window/controls/owners.h"
#include "window/resource.h"

namespace vndiscover::host {

// Registers a type of window, once, and returns its name.
const wchar_t* RegisterType(const wchar_t* name, WNDPROC procedure);

// Makes a visible child. `text`: the number of its string; 0: none.
HWND CreateControl(HWND parent, const wchar_t* type, unsigned text, DWORD style, int id,
                   DWORD extended = 0);

std::wstring WindowText(HWND window);
// Sets a text unless it is shown already: that would flicker, and move the caret of an edit
// control.
void ChangeText(HWND window, const std::wstring& text);
// Like ChangeText, for a read-only edit control. It has a scroll bar while its text needs one.
void ShowWhole(HWND edit, const std::wstring& text);

// Moves a window to the place that WM_DPICHANGED suggests, even if that is below the minimum: it is
// rounded in another way, and the window would grow each time that it comes to another screen.
void UseSuggestedPlace(HWND window, const RECT& place);

// Moves a window to the middle of its owner, as far as the screen allows. A window whose size the
// user can change is made no larger than the screen.
void CentreOnOwner(HWND window);

// Shows a problem to the user in a message, or to a script on the error output.
void ShowProblem(HWND owner, const std::wstring& problem, bool isScript);
// Shows the exception that is being handled. Shows nothing while another one is shown: a window
// that cannot be drawn fails again under the message.
void ShowException(HWND owner, bool isScript) noexcept;

// A dialog of the resources. It opens in the middle of its owner, and adapts to a screen of another
// DPI.
class Dialog {
  public:
    virtual ~Dialog() = default;
    virtual std::optional<LRESULT> OnMessage(HWND dialog, UINT message, WPARAM wParam,
                                             LPARAM lParam);
    void OnException() noexcept { ShowException(dialog_, false); }

  protected:
    // Shows it until EndDialog, and returns whether that was called with TRUE. Throws
    // std::runtime_error if the system cannot make it, like OpenDialog below.
    bool ShowModal(HWND owner, int resource);
    HWND Item(int id) const { return GetDlgItem(dialog_, id); }
    void SetItem(int id, const std::wstring& text) const { ChangeText(Item(id), text); }

    virtual void OnOpened() {}                     // fills the controls
    virtual void OnControl(int id, int code) = 0;  // as in WM_COMMAND
    virtual void OnFonts() {}              // makes fonts and heights that differ from the others
    virtual void OnDpi(int /*former*/) {}  // called when the controls have the size of the new DPI
    // Gives the controls the font of the resource, in the size of this DPI.
    void MakeFonts();
    // Sets the heights of fields for one line, and centres each on the label before it.
    void FitFields(std::initializer_list<int> fields) const;

    HWND dialog_ = nullptr;
    int dpi_ = 96;

  private:
    void SetDpi(int dpi, const RECT& place);

    LOGFONTW face_ = {};  // of its resource
    int firstDpi_ = 96;   // when it was opened
    OwnedFont font_;      // none: that of its resource
};

// A dialog that leaves its owner enabled. It contains a list, whose model it is, and the whole text
// of the selected row. The user may enlarge it.
class ListDialog : public Dialog, protected ListModel {
  public:
    ~ListDialog() override;
    std::optional<LRESULT> OnMessage(HWND dialog, UINT message, WPARAM wParam,
                                     LPARAM lParam) override;

  protected:
    struct Form {
        int resource;
        std::wstring title;  // of the list too
        std::vector<ListColumn> columns;
        int growing = 0;  // the control that becomes higher with the dialog; 0: the list
    };
    // Opens it, or brings it to the front as it is.
    void OpenDialog(HWND owner, Form form);
    bool IsOpen() const { return dialog_ != nullptr; }
    void Close() { DestroyWindow(dialog_); }  // if it is open

    void OnOpened() override;
    // Shows what the model has now.
    void Refresh();
    void OnSelected() override;

    virtual void OnCommand(int id) = 0;  // a button was pressed
    virtual void OnClosed() {}

    ListControl list_{*this};
    Form form_{};

  private:
    void OnControl(int id, int code) override;
    void OnDpi(int former) override;
    void Stretch();

    SIZE client_ = {}, minimum_ = {};  // of the client area; of the whole window
};

// Asks a question with three buttons, whose strings are `yes`, `no` and `none`. Returns IDYES, IDNO
// or IDCANCEL.
int AskYesNoCancel(HWND owner, const std::wstring& question, unsigned yes, unsigned no,
                   unsigned none = IDS_CANCEL);

// Asks for devices that no sweep reaches. Returns names or addresses as typed, in UTF-8; none if
// the user cancelled.
std::vector<std::string> AskHosts(HWND owner);

}  // namespace vndiscover::host
