#include "window/dialogs/dialogs.h"

#include <commctrl.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/console.h"
#include "platform/messages.h"
#include "platform/saved_file.h"
#include "platform/wide_text.h"
#include "values/text.h"
#include "window/controls/placement.h"
#include "window/store/scan_files.h"
#include "window/strings.h"

namespace vndiscover::host {

namespace {

RECT PlaceIn(HWND dialog, HWND control) {
    RECT place = {};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// Moves each control to the place that `change` makes of its current one.
template <class Change>
void MoveControls(HWND dialog, Change change) {
    Placement placement(dialog);
    for (HWND each = GetWindow(dialog, GW_CHILD); each; each = GetWindow(each, GW_HWNDNEXT)) {
        RECT place = PlaceIn(dialog, each);
        change(each, place);
        placement.Move(each, BoxOf(place));
    }
}

// The system gives a program with a window no console, even if it was started from one.
HANDLE ErrorOutput() {
    const HANDLE given = GetStdHandle(STD_ERROR_HANDLE);
    if ((given && given != INVALID_HANDLE_VALUE) || !AttachConsole(ATTACH_PARENT_PROCESS))
        return given;
    const HANDLE console =
        CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
    SetStdHandle(STD_ERROR_HANDLE, console);  // which stays open for the next problem
    return console;
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
                           WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | style, 0, 0, 0, 0, parent,
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

void ShowWhole(HWND edit, const std::wstring& text) {
    ChangeText(edit, text);
    const LRESULT margins = SendMessageW(edit, EM_GETMARGINS, 0, 0);
    const Box room = BoxOf(edit);
    const SIZE needed = TextSize(edit, text, DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX,
                                 room.width - LOWORD(margins) - HIWORD(margins));
    const bool isLong = needed.cy > room.height;
    ShowScrollBar(edit, SB_VERT, isLong);
    // Then the keyboard has to reach it.
    const LONG_PTR style = GetWindowLongPtrW(edit, GWL_STYLE) & ~WS_TABSTOP;
    SetWindowLongPtrW(edit, GWL_STYLE, style | (isLong ? WS_TABSTOP : 0));
}

void UseSuggestedPlace(HWND window, const RECT& place) {
    SetWindowPos(window, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOSENDCHANGING);
}

void CentreOnOwner(HWND window) {
    Box place = BoxOf(window);
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof placement;
    const HWND owning = GetWindow(window, GW_OWNER);
    GetWindowPlacement(owning, &placement);  // for a minimised owner: where it will be restored
    const Box owner = IsIconic(owning) ? BoxOf(placement.rcNormalPosition) : BoxOf(owning);
    place.x = (2 * owner.x + owner.width - place.width) / 2;
    place.y = (2 * owner.y + owner.height - place.height) / 2;
    place = FitInto(WorkAreaOf(owning), place);
    // Otherwise it would be cut.
    const bool isSizeable = (GetWindowLongPtrW(window, GWL_STYLE) & WS_THICKFRAME) != 0;
    SetWindowPos(window, nullptr, place.x, place.y, place.width, place.height,
                 SWP_NOZORDER | SWP_NOACTIVATE | (isSizeable ? 0 : SWP_NOSIZE));
}

bool Dialog::ShowModal(HWND owner, int resource) {
    const INT_PTR end =
        DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(resource), owner,
                        DialogProcedure<Dialog>, reinterpret_cast<LPARAM>(this));
    if (end == -1) throw std::runtime_error(ToUtf8(Text(IDS_NO_WINDOW)));
    return end == TRUE;
}

std::optional<LRESULT> Dialog::OnMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        dialog_ = dialog;
        DisableSystemScaling(dialog);
        dpi_ = firstDpi_ = DpiOf(dialog);
        const LRESULT font = SendMessageW(dialog, WM_GETFONT, 0, 0);
        GetObjectW(reinterpret_cast<HFONT>(font), sizeof face_, &face_);
        ChangeTexts(dialog);
        OnFonts();
        OnOpened();
        CentreOnOwner(dialog);
        return TRUE;
    }
    if (message == WM_NCDESTROY) {
        dialog_ = nullptr;
        font_.Reset();
    } else if (message == WM_DPICHANGED) {
        SetDpi(HIWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
        return 0;
    } else if (message == WM_HELP) {  // F1, while the owner's keys do nothing
        PostMessageW(GetWindow(dialog, GW_OWNER), WM_COMMAND, IDM_HELP, 0);
        return TRUE;
    } else if (message == WM_SETTINGCHANGE) {  // such as how letters are smoothed
        MakeFonts();
    } else if (message == WM_COMMAND) {
        OnControl(LOWORD(wParam), HIWORD(wParam));
    }
    return std::nullopt;
}

// The system could not do this: it knows neither columns nor the fonts and heights made here.
void Dialog::SetDpi(int dpi, const RECT& place) {
    const int former = std::exchange(dpi_, dpi);
    MoveControls(dialog_, [&](HWND control, RECT& box) {
        box.bottom = std::max(box.bottom, box.top + OpenHeight(control));
        for (LONG* side : {&box.left, &box.top, &box.right, &box.bottom})
            *side = MulDiv(*side, dpi, former);
    });
    MakeFonts();
    OnDpi(former);
    UseSuggestedPlace(dialog_, place);
}

void Dialog::MakeFonts() {
    LOGFONTW font = face_;  // scaled once, since each scaling rounds
    font.lfHeight = MulDiv(font.lfHeight, dpi_, firstDpi_);
    OwnedFont next(CreateFontIndirectW(&font));
    for (HWND each = GetWindow(dialog_, GW_CHILD); each; each = GetWindow(each, GW_HWNDNEXT))
        SendMessageW(each, WM_SETFONT, reinterpret_cast<WPARAM>(next.Get()), TRUE);
    font_ = std::move(next);
    OnFonts();
}

void Dialog::FitFields(std::initializer_list<int> fields) const {
    for (const int field : fields) {
        const RECT label = PlaceIn(dialog_, GetWindow(Item(field), GW_HWNDPREV));
        const RECT place = PlaceIn(dialog_, Item(field));
        const int height = FitField(Item(field));
        SetWindowPos(Item(field), nullptr, place.left, (label.top + label.bottom - height) / 2,
                     place.right - place.left, std::max(height, OpenHeight(Item(field))),
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

ListDialog::~ListDialog() {
    if (dialog_) DestroyWindow(dialog_);
}

void ListDialog::OpenDialog(HWND owner, Form form) {
    if (!dialog_) {
        form_ = std::move(form);
        CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(form_.resource), owner,
                           DialogProcedure<Dialog>,
                           reinterpret_cast<LPARAM>(static_cast<Dialog*>(this)));
    }
    if (!dialog_) throw std::runtime_error(ToUtf8(Text(IDS_NO_WINDOW)));
    if (IsWindowEnabled(owner)) {
        ShowWindow(dialog_, SW_SHOW);
        SetActiveWindow(dialog_);
    } else {
        SetWindowPos(dialog_, GetLastActivePopup(owner), 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    }
}

std::optional<LRESULT> ListDialog::OnMessage(HWND dialog, UINT message, WPARAM wParam,
                                             LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        client_ = ClientSize(dialog);
        minimum_ = {};  // that of a former window
        SendMessageW(dialog, WM_SETICON, ICON_SMALL,
                     GetClassLongPtrW(GetWindow(dialog, GW_OWNER), GCLP_HICON));
    } else if (message == WM_SIZE && wParam != SIZE_MINIMIZED) {
        Stretch();
    } else if (message == WM_GETMINMAXINFO) {
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {minimum_.cx, minimum_.cy};
        return 0;
    }
    const auto result = Dialog::OnMessage(dialog, message, wParam, lParam);
    if (message == WM_INITDIALOG) {  // now it is no larger than the screen
        const Box whole = BoxOf(dialog);
        minimum_ = {whole.width, whole.height};
        // It must not get the focus while the user types into a modal dialog.
        if (!IsWindowEnabled(GetWindow(dialog, GW_OWNER))) return std::nullopt;
    }
    if (message == WM_NCDESTROY) OnClosed();
    return result ? result : HandleListMessage(message, wParam, lParam);
}

void ListDialog::OnControl(int id, int code) {
    if (id == IDCANCEL) {
        Close();
    } else if (code == BN_CLICKED) {
        if (id == IDC_COPY_ROW) list_.Copy(IDM_COPY_ROW);
        if (id == IDC_COPY_TABLE) list_.Copy(IDM_COPY_TABLE);
        OnCommand(id);
    }
}

// One control becomes higher, and wide ones become wider. What is below it moves down. What is not
// wide moves to the right if it is below it or in the right half.
void ListDialog::Stretch() {
    const SIZE former = std::exchange(client_, ClientSize(dialog_));
    const LONG right = client_.cx - former.cx, down = client_.cy - former.cy;
    const HWND growing = form_.growing != 0 ? Item(form_.growing) : list_.Handle();
    const LONG bottom = PlaceIn(dialog_, growing).bottom;
    MoveControls(dialog_, [&](HWND control, RECT& place) {
        const bool isBelow = place.top >= bottom;
        const bool isWide = place.right - place.left > former.cx / 2;
        const bool isMoved = !isWide && (isBelow || place.left > former.cx / 2);
        OffsetRect(&place, isMoved ? right : 0, isBelow ? down : 0);
        if (isWide) place.right += right;
        if (control == growing) place.bottom += down;
    });
    list_.Fit();
    ShowWhole(Item(IDC_CHOSEN), WindowText(Item(IDC_CHOSEN)));
}

void ListDialog::OnDpi(int former) {
    list_.SetDpi(dpi_);
    for (LONG* size : {&client_.cx, &client_.cy, &minimum_.cx, &minimum_.cy})
        *size = MulDiv(*size, dpi_, former);
}

void ListDialog::OnOpened() {
    SetWindowTextW(dialog_, form_.title.c_str());
    list_.Attach(FindWindowExW(dialog_, nullptr, WC_LISTVIEWW, nullptr));
    list_.SetName(form_.title);
    list_.SetDpi(dpi_);
    list_.SetColumns(form_.columns);
    Refresh();
}

void ListDialog::Refresh() {
    list_.Refresh();
    OnSelected();
}

// Without effect on buttons that a dialog does not have.
void ListDialog::OnSelected() {
    ShowWhole(Item(IDC_CHOSEN), list_.SelectedText());
    EnableWindow(Item(IDC_COPY_ROW), list_.Selected() >= 0);
    EnableWindow(Item(IDC_COPY_TABLE), Count() != 0);
}

void ShowProblem(HWND owner, const std::wstring& problem, bool isScript) {
    if (!isScript) {
        MessageBoxW(owner, problem.c_str(), Text(IDS_TITLE).c_str(), MB_OK | MB_ICONWARNING);
        return;
    }
    WriteText(ErrorOutput(), "VnBrowser: " + ToUtf8(problem) + "\n");
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

int AskYesNoCancel(HWND owner, const std::wstring& question, unsigned yes, unsigned no,
                   unsigned none) {
    const std::wstring title = Text(IDS_TITLE), third = Text(none);
    const std::wstring first = Text(yes), second = Text(no);
    const TASKDIALOG_BUTTON buttons[] = {
        {IDYES, first.c_str()}, {IDNO, second.c_str()}, {IDCANCEL, third.c_str()}};
    TASKDIALOGCONFIG dialog = {};
    dialog.cbSize = sizeof dialog;
    dialog.hwndParent = owner;
    dialog.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION | TDF_POSITION_RELATIVE_TO_WINDOW;
    // Wine opens one with two lines of text in the corner of the screen.
    dialog.pfCallback = [](HWND window, UINT event, WPARAM, LPARAM, LONG_PTR) -> HRESULT {
        if (event == TDN_CREATED) CentreOnOwner(window);
        return S_OK;
    };
    dialog.pszWindowTitle = title.c_str();
    dialog.pszMainInstruction = question.c_str();
    dialog.cButtons = 3;
    dialog.pButtons = buttons;
    int answer = IDCANCEL;
    const HRESULT shown = TaskDialogIndirect(&dialog, &answer, nullptr, nullptr);
    if (FAILED(shown)) throw std::runtime_error(ErrorText(static_cast<DWORD>(shown)));
    return answer;
}

namespace {

constexpr size_t kMaxHosts = 1000;
constexpr size_t kMaxFileSize = size_t{256} * 1024;

class AddDialog : public Dialog {
  public:
    std::vector<std::string> AskHosts(HWND owner) {
        ShowModal(owner, IDD_ADD);
        return std::move(hosts_);
    }

  private:
    void OnOpened() override { EnableControls(); }
    void OnControl(int id, int code) override {
        if (id == IDC_ADD_HOSTS && code == EN_CHANGE) EnableControls();
        if (id == IDC_ADD_FILE) ReadFile();
        if (id == IDOK) Finish();
        if (id == IDCANCEL) EndDialog(dialog_, FALSE);
    }

    std::vector<std::string> Hosts() const {
        return SplitText(ToUtf8(WindowText(Item(IDC_ADD_HOSTS))), ",; \t\r\n");
    }
    void EnableControls() const { EnableWindow(Item(IDOK), !Hosts().empty()); }

    // Adds the file's text to what was typed.
    void ReadFile() const {
        const std::string path = AskPath(dialog_, IDS_TEXT_FILES, L"txt", L"", false);
        if (path.empty()) return;
        std::string problem;
        const auto text = ReadFileText(path, kMaxFileSize, problem);
        if (!text)
            return ShowProblem(dialog_, Text(IDS_NOT_READ, {ToWide(problem), ToWide(path)}), false);
        const std::wstring typed = WindowText(Item(IDC_ADD_HOSTS));
        SetItem(IDC_ADD_HOSTS, (typed.empty() ? L"" : typed + L"\r\n") + EditText(*text));
        EnableControls();  // a field of several lines does not report this change
    }

    void Finish() {
        hosts_ = Hosts();
        if (hosts_.size() <= kMaxHosts) return void(EndDialog(dialog_, TRUE));
        const std::wstring count = Grouped(hosts_.size());
        ShowProblem(dialog_, Text(IDS_TOO_MANY_HOSTS, {Grouped(kMaxHosts), count}), false);
        hosts_.clear();
        SetFocus(Item(IDC_ADD_HOSTS));
    }

    std::vector<std::string> hosts_;
};

}  // namespace

std::vector<std::string> AskHosts(HWND owner) { return AddDialog().AskHosts(owner); }

}  // namespace vndiscover::host
