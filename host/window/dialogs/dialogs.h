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

// Makes a visible child. `text`: a string; 0: none.
HWND CreateControl(HWND parent, const wchar_t* type, unsigned text, DWORD style, int id,
                   DWORD extended = 0);

std::wstring WindowText(HWND window);
// Sets a text unless it is shown already, which would flicker and move the caret of an edit
// control.
void ChangeText(HWND window, const std::wstring& text);
// The same for an edit control that is read only, with a scroll bar while its text needs one.
void ShowWhole(HWND edit, const std::wstring& text);

// For WM_DPICHANGED, whose place is taken as it is: a minimum with other rounding would make a
// window grow each time that it comes to another screen.
void UseSuggestedPlace(HWND window, const RECT& place);

// Moves a window to the middle of its owner, as far as the screen allows. One with a frame to
// drag is made no larger than the screen.
void CentreOnOwner(HWND window);

// Shows a user a problem in a message, or a script on the error output.
void ShowProblem(HWND owner, const std::wstring& problem, bool isScript);
// Shows the exception that is being handled. Shows one at a time, since a window that cannot be
// drawn fails again under the message.
void ShowException(HWND owner, bool isScript) noexcept;

// A dialog of the resources, in the middle of its owner. Its user may move it to a screen of
// another DPI.
class Dialog {
  public:
    virtual ~Dialog() = default;
    virtual std::optional<LRESULT> OnMessage(HWND dialog, UINT message, WPARAM wParam,
                                             LPARAM lParam);
    void OnException() noexcept { ShowException(dialog_, false); }

  protected:
    // Shows it until it is ended. Returns false if that was with FALSE. Throws std::runtime_error
    // if the system cannot make it, as OpenDialog below.
    bool Ask(HWND owner, int resource);
    HWND Item(int id) const { return GetDlgItem(dialog_, id); }
    void SetItem(int id, const std::wstring& text) const { ChangeText(Item(id), text); }

    virtual void Begin() {}
    virtual void OnControl(int id, int code) = 0;  // as in WM_COMMAND
    virtual void OnFonts() {}                      // those of its own must be made anew
    virtual void OnDpi(int /*former*/) {}          // its controls have the size of this one
    // Gives its controls the font of its resource, in the size of this DPI.
    void MakeFonts();
    // Gives the fields for one line their height, in the middle of the labels before them.
    void FitFields(std::initializer_list<int> fields) const;

    HWND dialog_ = nullptr;
    int dpi_ = 96;

  private:
    void SetDpi(int dpi, const RECT& place);

    LOGFONTW face_ = {};  // of its resource
    int firstDpi_ = 96;   // when it was opened
    OwnedFont font_;      // none: that of its resource
};

// A dialog that leaves its owner enabled. It contains a list, of which it is the model, and the
// whole text of the selected row. Its user may enlarge it.
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
        int grown = 0;  // the control that gets what the dialog gains; 0: the list
    };
    // Opens it, or brings it to the front as it is.
    void OpenDialog(HWND owner, Form form);
    bool IsOpen() const { return dialog_ != nullptr; }
    void Close() { DestroyWindow(dialog_); }  // if it is open

    void Begin() override;
    // Shows what the model has now.
    void Refresh();
    void OnSelected() override;

    virtual void OnCommand(int id) = 0;  // of a button
    virtual void OnClosed() {}

    ListControl list_{*this};
    Form form_{};

  private:
    void OnControl(int id, int code) override;
    void OnDpi(int former) override;
    void Stretch();

    SIZE client_ = {}, least_ = {};  // of the client area; of the smallest window
};

// Asks with three buttons, whose strings are `yes`, `no` and `none`. Returns IDYES, IDNO or
// IDCANCEL.
int AskYesNoCancel(HWND owner, const std::wstring& question, unsigned yes, unsigned no,
                   unsigned none = IDS_CANCEL);

// Asks for devices that no sweep reaches: names or addresses as typed, UTF-8. Empty if the user
// cancelled.
std::vector<std::string> AskHosts(HWND owner);

}  // namespace vndiscover::host
