#include "window/main/main_window.h"

#include <stdexcept>
#include <utility>

#include "model/scan/device_view.h"
#include "platform/messages.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/utc_time.h"
#include "window/controls/clipboard.h"
#include "window/controls/placement.h"
#include "window/dialogs/dialogs.h"
#include "window/main/commands.h"
#include "window/main/device_commands.h"
#include "window/main/result_handler.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr UINT_PTR kFrameTimer = 1, kStatusTimer = 2, kRefreshTimer = 3;
constexpr UINT kFrameMs = 100, kStatusMs = 250;
constexpr size_t kMostResults = 1000;  // in a frame: so many new devices take some 30 ms

}  // namespace

struct MainWindow::Message {
    UINT id;
    WPARAM wParam;
    LPARAM lParam;
    std::optional<LRESULT> result = 0;
};
struct MainWindow::MessageRow {
    // Returns the focus to its control when the window is active again: Windows would set it to the
    // window itself, where keys do nothing.
    static void HandleFocus(MainWindow& self, Message& message) {
        const HWND window = self.Handle(), focus = GetFocus();
        const bool isLeaving = message.id == WM_ACTIVATE && LOWORD(message.wParam) == WA_INACTIVE;
        if (isLeaving && IsChild(window, focus)) self.focus_ = focus;
        if (message.id == WM_SETFOCUS)
            SetFocus(IsChild(window, self.focus_) ? self.focus_ : GetDlgItem(window, IDC_FIND));
        message.result.reset();
    }
    static void DragGap(MainWindow& self, Message& message) {
        message.result = TRUE;
        if (!self.panes.OnMouse(message.id)) message.result.reset();
    }
    static void Redraw(MainWindow& self, Message& message) {
        self.panes.SetDpi(self.panes.Dpi());
        self.panes.Place();
        message.result.reset();
    }
    UINT message;
    void (*handle)(MainWindow& self, Message& message);
};
const MainWindow::MessageRow MainWindow::kMessages[] = {
    // The results wait for this timer, so that one frame shows all of them.
    {WindowState::kResults,
     [](MainWindow& self, Message&) { SetTimer(self.Handle(), kFrameTimer, kFrameMs, nullptr); }},
    {WM_TIMER, [](MainWindow& self, Message& timer) { self.OnTimer(timer.wParam); }},
    {WM_SIZE, [](MainWindow& self, Message&) { self.panes.Place(); }},
    {WM_GETMINMAXINFO,
     [](MainWindow& self, Message& size) {
         const SIZE least = self.panes.MinimumSize();
         reinterpret_cast<MINMAXINFO*>(size.lParam)->ptMinTrackSize = {least.cx, least.cy};
     }},
    {WM_DPICHANGED,
     [](MainWindow& self, Message& dpi) {
         self.panes.list.SaveColumns();
         self.panes.SetDpi(HIWORD(dpi.wParam));
         self.panes.list.ShowColumns();
         UseSuggestedPlace(self.Handle(), *reinterpret_cast<const RECT*>(dpi.lParam));
         self.panes.Place();
     }},
    {DM_GETDEFID,  // Enter begins a search, but does not stop one
     [](MainWindow& self, Message& button) {
         button.result = self.state.IsBusy() ? 0 : MAKELRESULT(IDC_FIND, DC_HASDEFID);
     }},
    {WM_SETCURSOR, MessageRow::DragGap},
    {WM_LBUTTONDOWN, MessageRow::DragGap},
    {WM_MOUSEMOVE, MessageRow::DragGap},
    {WM_LBUTTONUP, MessageRow::DragGap},
    {WM_ACTIVATE, MessageRow::HandleFocus},
    {WM_SETFOCUS, MessageRow::HandleFocus},
    {WM_SYSCOLORCHANGE, MessageRow::Redraw},
    {WM_THEMECHANGED, MessageRow::Redraw},
    {WM_SETTINGCHANGE, MessageRow::Redraw},
    {WM_INITMENUPOPUP,
     [](MainWindow& self, Message& menu) {
         if (HIWORD(menu.lParam) == 0)  // not the system's
             EnableCommands(self, reinterpret_cast<HMENU>(menu.wParam));
     }},
    {WM_COMMAND,
     [](MainWindow& self, Message& command) {
         self.OnCommand(LOWORD(command.wParam), HIWORD(command.wParam));
     }},
    {WM_NOTIFY,
     [](MainWindow& self, Message& message) {
         const auto& header = *reinterpret_cast<const NMHDR*>(message.lParam);
         if (header.idFrom == IDC_DEVICES) self.panes.list.OnNotify(header);
         if (header.idFrom == IDC_DEVICES && header.code == LVN_ITEMACTIVATE)
             self.OnCommand(IDM_DETAILS, 0);
         self.panes.details.OnNotify(header);
         message.result = HandleListMessage(WM_NOTIFY, message.wParam, message.lParam);
     }},
    {WM_CONTEXTMENU,
     [](MainWindow& self, Message& message) {
         const auto control = reinterpret_cast<HWND>(message.wParam);
         const HWND own = self.panes.list.Handle();
         if (control == own || control == ListView_GetHeader(own)) {
             self.panes.list.ShowMenu(message.lParam);
         } else {
             message.result = HandleListMessage(WM_CONTEXTMENU, message.wParam, message.lParam);
         }
     }},
    {kCopied,
     [](MainWindow& self, Message& copying) {
         self.state.progress.SetNote(copying.wParam ? L"" : Text(IDS_NOT_COPIED));
         self.ShowStatus();
     }},
    // A question to the user is not possible: the system would end the program meanwhile.
    {WM_QUERYENDSESSION, [](MainWindow&, Message& message) { message.result = TRUE; }},
    {WM_ENDSESSION,
     [](MainWindow& self, Message& end) {
         if (end.wParam) self.OnSessionEnd(end.lParam);
     }},
    {WM_CLOSE,
     [](MainWindow& self, Message&) {
         if (self.MayClose()) self.OnClose();
     }},
    {WM_DESTROY, [](MainWindow& self, Message&) {
         Attach<MainWindow>(self.Handle(), nullptr);
         self.state.window = nullptr;
         PostQuitMessage(0);
     }}};

MainWindow::MainWindow(StartOptions options) {
    state.options = std::move(options);
    // The times in a script's files do not depend on the user's settings.
    SetTimeFormat(state.options.exit ? nullptr : SystemTime);
    state.showRows = [this] {
        if (state.session.Refresh()) scans.RecordChanges();
        panes.ShowRows();
    };
    state.handleResults = [this] { OnResults(); };
    state.onSelected = [this] { OnSelected(); };
    state.onSelection = [this] { panes.ShowDetailsTitle(); };
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES |
                                                                ICC_TAB_CLASSES |
                                                                ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
    const wchar_t* const type = RegisterType(L"VnBrowser", WindowProcedure<MainWindow>);
    keys_ = MakeKeys();
    OwnedMenu menu = MakeMenu();
    state.window =
        CreateWindowExW(WS_EX_CONTROLPARENT, type, Text(IDS_TITLE).c_str(),
                        WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT, 0, 0,
                        nullptr, menu.Get(), GetModuleHandleW(nullptr), nullptr);
    if (!state.window) throw std::runtime_error(ToUtf8(Text(IDS_NO_WINDOW)));
    menu.Release();  // the window owns it from now on
    Attach(state.window, this);
}

MainWindow::MainWindow(Engine& engine, StartOptions options) : MainWindow(std::move(options)) {
    panes.Create();
    panes.SetDpi(DpiOf(state.window));
    panes.RestoreSettings();
    panes.PlaceWindow();
    state.workers = std::make_unique<Workers>(engine, state.queue);
    state.workers->ReadAdapters();
    searches.ApplyOptions();
    state.showRows();
    ShowStatus();
    if (!state.options.exit) {  // a script shows no window
        ShowWindow(state.window, state.settings.isMaximized ? SW_SHOWMAXIMIZED : SW_SHOWDEFAULT);
        SetFocus(GetDlgItem(state.window, IDC_FIND));
    }
    RestartTimer(state.settings.refreshMinutes);
    if (state.options.sweep) OnCommand(IDC_FIND, 0);
}

MainWindow::~MainWindow() {
    if (!state.window) return;  // it was closed
    Attach<MainWindow>(state.window, nullptr);
    ShowOwnedPopups(state.window, FALSE);
    ShowWindow(state.window, SW_HIDE);
    if (state.workers) EndWorkers();
    DestroyWindow(state.window);
}

int MainWindow::Run() {
    if (!state.options.exit && !state.options.sweep) scans.OfferRecovery();
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) Dispatch(message);
    return state.exitCode;
}

void MainWindow::Dispatch(MSG& message) try {
    // While text is edited, Ctrl+C copies that.
    const int copy = message.message == WM_KEYDOWN ? ListControl::CopyCommandOf(message.wParam) : 0;
    const ListControl* from = copy != 0 ? ListControl::Of(message.hwnd) : nullptr;
    if (from == &panes.list) return OnCommand(copy, 0);
    if (from) return from->Copy(copy);
    const HWND active = GetActiveWindow();
    const bool isOther = active && active != state.window;
    const bool isKey = message.message == WM_KEYDOWN;
    ListControl* const list = isKey ? ListControl::Of(message.hwnd) : nullptr;
    if (list && message.wParam == VK_RETURN && (isOther || GetKeyState(VK_CONTROL) >= 0))
        return list == &panes.list ? OnCommand(IDM_DETAILS, 0) : void();  // presses no button
    if (list && message.wParam == VK_F9 && isOther) return list->SortByKey();
    const bool isForAll = isKey && message.wParam == VK_F1;
    if ((!isOther || isForAll) && TranslateAcceleratorW(state.window, keys_.Get(), &message))
        return;
    if (IsDialogMessageW(active ? active : state.window, &message)) return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
} catch (...) {  // from a key that was handled here, outside of window procedures
    OnException();
}

std::optional<LRESULT> MainWindow::OnMessage(HWND, UINT id, WPARAM wParam, LPARAM lParam) {
    for (const MessageRow& row : kMessages) {
        if (row.message != id) continue;
        Message message{id, wParam, lParam};
        row.handle(*this, message);
        return message.result;
    }
    return std::nullopt;
}

// The process may end right after this.
void MainWindow::OnSessionEnd(LPARAM how) {
    state.isSessionEnding = true;
    panes.SaveSettings();
    try {
        EndEarly();
    } catch (...) {  // the scan must be saved all the same
        OnException();
    }
    scans.SaveForRecovery();
    // An installer waits for the end of the process. This also ends open dialogs.
    if (how & ENDSESSION_CLOSEAPP) PostQuitMessage(state.exitCode);
}

void MainWindow::OnException() noexcept {
    if (state.options.exit) {  // otherwise a failed search might never end the program
        state.exitCode = kFailed;
        PostMessageW(state.window, WM_CLOSE, 0, 0);
    }
    if (state.options.exit || !state.isSessionEnding)
        ShowException(state.window, state.options.exit);
}

void MainWindow::OnSelected() {
    const DeviceRow* row = state.session.view.SelectedRow();
    if (row) state.changes.Unmark(*row);
    panes.ShowDetails();
    ReadSelected(state, false);
}

void MainWindow::ShowStatus() {
    const bool isBusy = state.IsBusy();
    if (!isBusy) state.progress.SetIdle();
    // While something is in progress, the status changes with time.
    if (std::exchange(isTicking_, isBusy) != isBusy) {
        if (isBusy) SetTimer(Handle(), kStatusTimer, kStatusMs, nullptr);
        if (!isBusy) KillTimer(Handle(), kStatusTimer);
    }
    panes.ShowStatus();
}

void MainWindow::OnCommand(int id, int code) {
    if (!state.workers) return;  // it is closing
    if (id == IDC_FILTER && code == EN_CHANGE) {
        state.session.view.Filter(ToUtf8(WindowText(GetDlgItem(Handle(), IDC_FILTER))));
        panes.ShowRows();
        ShowStatus();
    } else if (id == IDC_PRESET && code == CBN_SELCHANGE) {
        panes.bar.ShowNote();
        panes.Place();  // the note may need another line
        state.session.view.ShowOnlyPrinters(panes.bar.LooksForPrinters());
        panes.ShowRows();
        ShowStatus();
    } else if (RunCommand(*this, static_cast<unsigned>(id))) {
        ShowStatus();
    }
}

void MainWindow::StopAll() {
    if (!state.workers->IsBusy()) return;
    state.progress.ClearNote();  // it is about what ends now
    state.workers->Stop();
    state.progress.Stop();
    doctor.Stop(state.window);
}

void MainWindow::RestartTimer(unsigned minutes) {
    KillTimer(Handle(), kRefreshTimer);
    if (minutes != 0) SetTimer(Handle(), kRefreshTimer, minutes * 60000, nullptr);
}

void MainWindow::OnResults() {
    KillTimer(state.window, kFrameTimer);
    ResultHandler handler(*this);
    state.queue.RunAll(handler, kMostResults);
    if (state.session.Refresh()) {
        scans.RecordChanges();
        panes.ShowRows();
    }
    calls.Refresh();
    walk.Refresh();
    if (searches.IsOver()) {
        InvalidateRect(panes.list.Handle(), nullptr, TRUE);
        searches.Finish();
        panes.ShowDetails();  // protocols are no longer pending
    }
    // The last results may still be in the queue.
    if (state.workers && !state.workers->IsBusy() && state.queue.IsEmpty()) {
        state.session.EndReadings();
        searches.EndReading();
    }
    ShowStatus();
}

void MainWindow::OnTimer(UINT_PTR timer) {
    // If a search is not possible now, it is tried again in a minute.
    if (timer == kRefreshTimer && state.settings.refreshMinutes != 0)
        RestartTimer(searches.Repeat() ? state.settings.refreshMinutes : 1);
    if (state.workers && state.progress.IsSearching() && state.progress.IsStopping())
        state.workers->RepeatStop();
    OnResults();  // first, since the status is about them
}

// A dialog's caller would continue without its window.
bool MainWindow::MayClose() {
    return state.workers && IsWindowEnabled(state.window) &&
           (searches.WillSave() || scans.MayDrop(IDS_ASK_SAVE));
}

// Saves what the command line's search has found so far.
void MainWindow::EndEarly() {
    ResultHandler handler(*this);
    state.queue.RunAll(handler);
    searches.EndStartSearch();
}

// Handles messages meanwhile, so that the system does not show the program as hanging.
void MainWindow::EndWorkers() {
    constexpr DWORD kRepeatMs = 50;
    const auto workers = std::move(state.workers);
    for (workers->Stop(); workers->IsBusy(); workers->RepeatStop()) {
        MSG message;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kRepeatMs, QS_ALLINPUT);
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
}

void MainWindow::OnClose() {
    // Closes the window even if something fails: the user cannot close a hidden window.
    const OwnedWindow closing(state.window);
    const bool willSave = searches.WillSave();
    // The window disappears at once, although a request may take up to 12 s more. It stays if a
    // file will be written, since a question about that needs a visible window.
    ShowOwnedPopups(state.window, FALSE);
    if (!willSave) ShowWindow(state.window, SW_HIDE);
    panes.SaveSettings();
    scans.DeleteRecoveryFile();
    EndWorkers();
    EndEarly();
    if (willSave) scans.MayDrop(IDS_ASK_SAVE);  // offers to save again if that failed
}

}  // namespace vndiscover::host
