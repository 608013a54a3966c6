// What windows, dialogs and messages have in common.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "window/controls/table_list.h"

namespace vndiscover::host {

// Registers a type of window, once, and returns its name.
const wchar_t* RegisterType(const wchar_t* name, WNDPROC procedure);

std::wstring WindowText(HWND window);
// Sets a text that is not shown already: no flicker, and an edit control keeps its place.
void ChangeText(HWND window, const std::wstring& text);

// A dialog that leaves its owner enabled, with a table in it.
class TableDialog {
  public:
    virtual ~TableDialog();
    TableDialog(const TableDialog&) = delete;
    TableDialog& operator=(const TableDialog&) = delete;

  protected:
    TableDialog() = default;
    // Opens it from its resource, or brings it to the front.
    void OpenDialog(HWND owner, int resource);
    bool IsOpen() const { return dialog_ != nullptr; }
    void Close() { DestroyWindow(dialog_); }
    HWND Item(int id) const { return GetDlgItem(dialog_, id); }
    void SetItem(int id, const std::wstring& text) const { ChangeText(Item(id), text); }
    // Begins it with its title, also of the table, and the table's columns.
    void BeginDialog(const std::wstring& title, int table, const std::vector<TableColumn>& columns);

    virtual void Begin() = 0;
    virtual void OnCommand(int id) = 0;
    virtual void OnSelected() {}
    virtual void OnClosed() {}

    TableList table_;
    HWND dialog_ = nullptr;

  private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
};

// Sets the title, the text of each control that has the number of a string, and OK and Cancel.
void SetDialogTexts(HWND dialog, unsigned title);

// Tells a user of a problem in a message, or a script on the error output.
void Tell(HWND owner, const std::wstring& problem, bool isScript);

// Asks whether to save the scan: IDYES, IDNO or IDCANCEL.
int AskToSave(HWND owner);

}  // namespace vndiscover::host
