#include "window/dialogs/dialogs.h"

#include <commctrl.h>

#include <utility>

#include "platform/error_text.h"
#include "platform/messages.h"
#include "platform/wide_text.h"
#include "window/controls/dpi.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

// `yes`, `no`: the strings of the buttons.
int AskYesNoCancel(HWND owner, const std::wstring& question, unsigned yes, unsigned no) {
    const std::wstring title = Text(IDS_TITLE), cancel = Text(IDS_CANCEL);
    const std::wstring first = Text(yes), second = Text(no);
    const TASKDIALOG_BUTTON buttons[] = {
        {IDYES, first.c_str()}, {IDNO, second.c_str()}, {IDCANCEL, cancel.c_str()}};
    TASKDIALOGCONFIG dialog = {};
    dialog.cbSize = sizeof dialog;
    dialog.hwndParent = owner;
    dialog.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION | TDF_POSITION_RELATIVE_TO_WINDOW;
    dialog.pszWindowTitle = title.c_str();
    dialog.pszMainInstruction = question.c_str();
    dialog.cButtons = 3;
    dialog.pButtons = buttons;
    int answer = IDCANCEL;
    TaskDialogIndirect(&dialog, &answer, nullptr, nullptr);
    return answer;
}

}  // namespace

const wchar_t* RegisterType(const wchar_t* name, WNDPROC procedure) {
    WNDCLASSW type = {};
    type.lpfnWndProc = procedure;
    type.hInstance = GetModuleHandleW(nullptr);
    type.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    type.hIcon = LoadIconW(type.hInstance, MAKEINTRESOURCEW(1));  // see cmake/CompileOptions.cmake
    type.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    type.lpszClassName = name;
    RegisterClassW(&type);  // fails harmlessly if it is already registered
    return name;
}

HWND CreateControl(HWND parent, const wchar_t* type, unsigned text, DWORD style, int id,
                   DWORD extended) {
    return CreateWindowExW(extended, type, text ? Text(text).c_str() : L"",
                           WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                           GetModuleHandleW(nullptr), nullptr);
}

std::wstring WindowText(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(
        static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

void ChangeText(HWND window, const std::wstring& text) {
    if (WindowText(window) != text) SetWindowTextW(window, text.c_str());
}

ListDialog::~ListDialog() {
    if (dialog_) DestroyWindow(dialog_);
}

void ListDialog::OpenDialog(HWND owner, int resource) {
    if (!dialog_)
        CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(resource), owner,
                           DialogProcedure<ListDialog>, reinterpret_cast<LPARAM>(this));
    if (!dialog_) return;
    ShowWindow(dialog_, SW_SHOW);
    SetActiveWindow(dialog_);
}

std::optional<LRESULT> ListDialog::OnMessage(HWND dialog, UINT message, WPARAM wParam,
                                             LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        dialog_ = dialog;
        Begin();
        return TRUE;
    }
    if (message == WM_NCDESTROY) {
        dialog_ = nullptr;
        OnClosed();
    } else if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
        Close();
    } else if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED) {
        OnCommand(LOWORD(wParam));
    }
    return HandleListMessage(message, wParam, lParam);
}

void ListDialog::BeginDialog(const std::wstring& title, int list,
                             const std::vector<ListColumn>& columns) {
    ChangeTexts(dialog_);
    SetWindowTextW(dialog_, title.c_str());
    list_.Attach(Item(list));
    list_.SetName(title);
    list_.SetDpi(DpiOf(dialog_));
    list_.SetColumns(columns);
    list_.Refresh();
}

namespace {

// A program with a window gets no console, but may have been started from one.
HANDLE ErrorOutput() {
    const HANDLE given = GetStdHandle(STD_ERROR_HANDLE);
    if ((given && given != INVALID_HANDLE_VALUE) || !AttachConsole(ATTACH_PARENT_PROCESS))
        return given;
    const HANDLE console = CreateFileW(L"CONOUT$", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr,
                                       OPEN_EXISTING, 0, nullptr);
    SetStdHandle(STD_ERROR_HANDLE, console);  // which stays open for the next problem
    return console;
}

}  // namespace

void ShowProblem(HWND owner, const std::wstring& problem, bool isScript) {
    if (!isScript) {
        MessageBoxW(owner, problem.c_str(), Text(IDS_TITLE).c_str(), MB_OK | MB_ICONWARNING);
        return;
    }
    const std::string text = "VnBrowser: " + ToUtf8(problem) + "\n";
    DWORD written = 0;
    WriteFile(ErrorOutput(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void ShowException(HWND owner, bool isScript) noexcept {
    static bool isShowing = false;  // the window's thread alone calls this
    if (std::exchange(isShowing, true)) return;
    try {
        ShowProblem(owner, ToWide(ExceptionText()), isScript);
    } catch (...) {
        MessageBoxW(owner, L"out of memory", L"VnBrowser", MB_OK | MB_ICONWARNING);
    }
    isShowing = false;
}

int AskToSave(HWND owner) {
    return AskYesNoCancel(owner, Text(IDS_ASK_SAVE), IDS_ASK_SAVE_YES, IDS_ASK_SAVE_NO);
}

int AskHowToFind(HWND owner, const std::wstring& file) {
    return AskYesNoCancel(owner, Text(IDS_FIND_HOW, {file}), IDS_FIND_ADD, IDS_FIND_NEW);
}

}  // namespace vndiscover::host
