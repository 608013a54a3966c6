// What windows, dialogs and messages have in common.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "window/controls/list_control.h"

namespace vndiscover::host {

// Registers a type of window, once, and returns its name.
const wchar_t* RegisterType(const wchar_t* name, WNDPROC procedure);

// Makes a visible child. `text`: a string; 0: none.
HWND CreateControl(HWND parent, const wchar_t* type, unsigned text, DWORD style, int id,
                   DWORD extended = 0);

std::wstring WindowText(HWND window);
// Sets a text that is not shown already: no flicker, and an edit control keeps its place.
void ChangeText(HWND window, const std::wstring& text);

// Shows a user a problem in a message, or a script on the error output.
void ShowProblem(HWND owner, const std::wstring& problem, bool isScript);
// The same for the exception that is being handled. One at a time: a window that cannot be drawn
// fails again while the message is shown.
void ShowException(HWND owner, bool isScript) noexcept;

// A dialog that leaves its owner enabled, with a list in it, of which it is the model.
class ListDialog : protected ListModel {
  public:
    ~ListDialog() override;
    ListDialog(const ListDialog&) = delete;
    ListDialog& operator=(const ListDialog&) = delete;

    std::optional<LRESULT> OnMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void OnException() noexcept { ShowException(dialog_, false); }

  protected:
    ListDialog() = default;
    // Opens it from its resource, or brings it to the front.
    void OpenDialog(HWND owner, int resource);
    bool IsOpen() const { return dialog_ != nullptr; }
    void Close() { DestroyWindow(dialog_); }
    HWND Item(int id) const { return GetDlgItem(dialog_, id); }
    void SetItem(int id, const std::wstring& text) const { ChangeText(Item(id), text); }
    // Begins it with its title, also of the list, and the list's columns.
    void BeginDialog(const std::wstring& title, int list, const std::vector<ListColumn>& columns);

    virtual void Begin() = 0;
    virtual void OnCommand(int id) = 0;
    virtual void OnClosed() {}

    ListControl list_{*this};
    HWND dialog_ = nullptr;
};

// Ask whether to save the scan, and whether to add to an opened one (IDYES) or begin a new list
// (IDNO). Each returns IDYES, IDNO or IDCANCEL.
int AskToSave(HWND owner);
int AskHowToFind(HWND owner, const std::wstring& file);

}  // namespace vndiscover::host
