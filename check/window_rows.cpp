// What the window of VnBrowser.exe requires of the system's windows and controls. Nothing is
// brought to the front.
#include "check/windows_headers.h"

#include <commctrl.h>
#include <shlwapi.h>

#include "check/module.h"
#include "check/rows.h"

namespace check {
namespace {

// A plain window with a label, a field, a button and a virtual list, and what the list tells it.
class Probe {
  public:
    Probe();
    ~Probe() {
        if (window_) DestroyWindow(window_);
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    bool IsThere() const { return window_ && list && field; }
    HWND Window() const { return window_; }
    // Also what the system posted meanwhile.
    void Paint() {
        InvalidateRect(list, nullptr, TRUE);
        UpdateWindow(list);
        Pump();
    }
    static void Pump() {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }

    HWND field = nullptr, button = nullptr, list = nullptr;
    int asked = 0, changed = 0;  // LVN_GETEMPTYMARKUP, LVN_ITEMCHANGED
    LRESULT found = -1;          // the answer to LVN_ODFINDITEM

  private:
    HWND Child(const wchar_t* type, const wchar_t* text, DWORD style, int top, int height) {
        return CreateWindowExW(0, type, text, WS_CHILD | WS_VISIBLE | style, 0, top, 200, height,
                               window_, nullptr, GetModuleHandleW(nullptr), nullptr);
    }
    LRESULT OnNotify(const NMHDR& header);
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window_ = nullptr;
};

Probe::Probe() {
    INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    WNDCLASSW type = {};
    type.lpfnWndProc = OnMessage;
    type.hInstance = GetModuleHandleW(nullptr);
    type.lpszClassName = L"WindowsCheckProbe";
    RegisterClassW(&type);  // again for the second one, which fails harmlessly
    window_ = CreateWindowExW(WS_EX_NOACTIVATE, type.lpszClassName, L"", WS_POPUP, 0, 0, 200, 200,
                              nullptr, nullptr, type.hInstance, nullptr);
    if (!window_) return;
    Child(L"STATIC", L"&Address:", 0, 0, 20);
    field = Child(L"EDIT", L"", WS_TABSTOP, 20, 20);
    button = Child(L"BUTTON", L"Find", WS_TABSTOP, 40, 20);
    list =
        Child(WC_LISTVIEWW, L"", LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | WS_TABSTOP, 60, 140);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ShowWindow(window_, SW_SHOWNOACTIVATE);
}

LRESULT Probe::OnNotify(const NMHDR& header) {
    if (header.code == UINT(LVN_GETEMPTYMARKUP)) ++asked;
    if (header.code == UINT(LVN_ITEMCHANGED)) ++changed;
    return header.code == UINT(LVN_ODFINDITEMW) || header.code == UINT(LVN_ODFINDITEMA) ? found : 0;
}

LRESULT CALLBACK Probe::OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<Probe*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return self && message == WM_NOTIFY ? self->OnNotify(*reinterpret_cast<const NMHDR*>(lParam))
                                        : DefWindowProcW(window, message, wParam, lParam);
}

void LibraryRows(Report& report) {
    const auto version =
        SystemFunction<HRESULT(CALLBACK*)(DLLVERSIONINFO*)>(L"comctl32.dll", "DllGetVersion");
    DLLVERSIONINFO info = {};
    info.cbSize = sizeof info;
    if (version) version(&info);
    report.Add("version of comctl32.dll by the manifest", "6", Number(info.dwMajorVersion));
    // By the second one, a dialog that scales itself keeps the system from scaling it too.
    for (const auto& [library, name] : {std::pair(L"comctl32.dll", "TaskDialogIndirect"),
                                        {L"user32.dll", "SetDialogDpiChangeBehavior"}})
        report.Add(name, "there", SystemFunction<FARPROC>(library, name) ? "there" : "missing");

    const auto context =
        SystemFunction<HANDLE(WINAPI*)()>(L"user32.dll", "GetThreadDpiAwarenessContext");
    const auto isSame = SystemFunction<BOOL(WINAPI*)(HANDLE, HANDLE)>(
        L"user32.dll", "AreDpiAwarenessContextsEqual");
    const char* const name = "DPI awareness by the manifest";
    const char* const second = "for each monitor, version 2";
    if (context && isSame) {
        const auto is = [&](intptr_t one) {
            return isSame(context(), reinterpret_cast<HANDLE>(one));
        };
        report.Add(name, second, is(-4) ? second : is(-3) ? "for each monitor" : "another one");
    } else {
        report.NotSeen(name, second, "this system does not tell");
    }
    const auto metrics =
        SystemFunction<int(WINAPI*)(int, UINT)>(L"user32.dll", "GetSystemMetricsForDpi");
    if (metrics) {
        const bool isWider = metrics(SM_CXVSCROLL, 192) > metrics(SM_CXVSCROLL, 96);
        report.Add("a scroll bar at 192 DPI against 96", "wider", isWider ? "wider" : "not wider");
    } else {
        report.NotSeen("a scroll bar at 192 DPI against 96", "wider", "this system does not tell");
    }
    report.Add("COLOR_BTNFACE against COLOR_WINDOW", "different",
               GetSysColor(COLOR_BTNFACE) == GetSysColor(COLOR_WINDOW) ? "the same" : "different");
}

std::string Selected(const Probe& probe) {
    const int row = ListView_GetNextItem(probe.list, -1, LVNI_SELECTED);
    return row < 0 ? "no row" : "row " + Number(row);
}

std::string AfterLetter(Probe& probe, LRESULT found) {
    ListView_SetItemState(probe.list, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    probe.found = found;
    SendMessageW(probe.list, WM_CHAR, 'p', 1);
    return Selected(probe);
}

void ListRows(Report& report, Probe& probe) {
    for (int time = 0; time < 3; ++time) probe.Paint();
    report.Add("how often an empty list asks for its text, painted three times", "1",
               Number(probe.asked));
    ListView_SetItemCountEx(probe.list, 5, 0);
    report.Add("a letter typed into a virtual list that answers 0", "row 0", AfterLetter(probe, 0));
    report.Add("a letter typed into a virtual list that answers -1", "no row",
               AfterLetter(probe, -1));
    ListView_SetItemState(probe.list, 1, LVIS_SELECTED | LVIS_FOCUSED,
                          LVIS_SELECTED | LVIS_FOCUSED);
    probe.changed = 0;
    SendMessageW(probe.list, WM_KEYDOWN, VK_DOWN, 1);
    report.Add("LVN_ITEMCHANGED for one change of the selected row", "3", Number(probe.changed));
}

std::string Focus(const Probe& probe) {
    const HWND focus = GetFocus();
    return focus == probe.field      ? "the field"
           : focus == probe.button   ? "the button"
           : focus == probe.Window() ? "the window"
           : focus                   ? "another window"
                                     : "nothing";
}

void FocusRows(Report& report, Probe& probe) {
    SetFocus(probe.button);
    MSG key = {probe.button, WM_SYSCHAR, 'a', LPARAM{1} << 29 | 1, 0, {}};
    IsDialogMessageW(probe.Window(), &key);
    report.Add("focus after Alt and the letter of a field's label, in a plain window", "the field",
               Focus(probe));

    SetFocus(probe.field);
    const HWND owned = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50,
                                       probe.Window(), nullptr, nullptr, nullptr);
    SetActiveWindow(owned);
    Probe::Pump();
    DestroyWindow(owned);
    Probe::Pump();
    report.Add("focus after an owned window, which a plain window must restore", "the window",
               Focus(probe));
}

}  // namespace

void WindowRows(Report& report) {
    report.Section("Windows and controls");
    LibraryRows(report);
    Probe probe;
    if (!probe.IsThere()) {
        report.NotSeen("a virtual list in a plain window", "there", "no window can be made");
        return;
    }
    ListRows(report, probe);
    FocusRows(report, probe);
}

}  // namespace check
