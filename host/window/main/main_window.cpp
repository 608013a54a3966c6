#include "window/main/main_window.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "platform/messages.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "window/controls/clipboard.h"
#include "window/controls/placement.h"
#include "window/dialogs/dialogs.h"
#include "window/dialogs/snmp_dialog.h"
#include "window/main/commands.h"
#include "window/main/panes.h"
#include "window/main/result_handler.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr UINT_PTR kFrameTimer = 1, kStatusTimer = 2, kRefreshTimer = 3;
constexpr UINT kFrameMs = 100, kStatusMs = 250;

}  // namespace

MainWindow::MainWindow(Engine& engine, StartOptions options) {
    state.options = std::move(options);
    state.showRows = [this] {
        if (state.session.Refresh()) scans.RecordChanges();
        panes.ShowRows();
    };
    state.handleResults = [this] { OnResults(); };
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
    panes.Create();
    panes.SetDpi(DpiOf(state.window));
    panes.RestoreSettings();
    panes.PlaceWindow();
    state.workers = std::make_unique<Workers>(engine, state.queue);
    state.workers->ReadAdapters();
    ApplyOptions();
    state.showRows();
    ShowStatus();
    if (!state.options.exit) {  // nothing of a script comes to the front
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
    if (!state.options.exit && !state.options.sweep) scans.OfferSaved();
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) Dispatch(message);
    return state.exitCode;
}

void MainWindow::Dispatch(MSG& message) try {
    // While text is edited, Ctrl+C copies that.
    const int copy = message.message == WM_KEYDOWN ? ListControl::CopyCommandOf(message.wParam) : 0;
    const ListControl* from = copy != 0 ? ListControl::Of(message.hwnd) : nullptr;
    if (from == &panes.list.List()) return OnCommand(copy, 0);
    if (from) return from->Copy(copy);
    const bool isEnter = message.message == WM_KEYDOWN && message.wParam == VK_RETURN;
    if (isEnter && message.hwnd == panes.list.Handle() && GetKeyState(VK_CONTROL) >= 0)
        return OnCommand(IDM_DETAILS, 0);
    if (TranslateAcceleratorW(state.window, keys_.Get(), &message)) return;
    const HWND active = GetActiveWindow();
    if (IsDialogMessageW(active ? active : state.window, &message)) return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
} catch (...) {  // of a key: no window procedure is around that
    OnException();
}

std::optional<LRESULT> MainWindow::OnMessage(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WindowState::kResults:  // it is emptied later, so that one frame handles all results
            SetTimer(Handle(), kFrameTimer, kFrameMs, nullptr);
            return 0;
        case WM_TIMER:
            OnTimer(wParam);
            return 0;
        case WM_COMMAND:
            OnCommand(LOWORD(wParam), HIWORD(wParam));
            return 0;
        case WM_INITMENUPOPUP:
            EnableCommands(*this, reinterpret_cast<HMENU>(wParam));
            return 0;
        case DM_GETDEFID:  // Enter begins a search, but does not stop one
            return state.IsBusy() ? 0 : MAKELRESULT(IDC_FIND, DC_HASDEFID);
        case WM_NOTIFY:
        case WM_CONTEXTMENU:
            return OnListMessage(message, wParam, lParam);
        case kCopied:
            state.progress.SetNote(wParam ? L"" : Text(IDS_NOT_COPIED));
            ShowStatus();
            return 0;
        case WM_ACTIVATE:
        case WM_SETFOCUS:
            focus_.OnMessage(Handle(), message, wParam, GetDlgItem(Handle(), IDC_FIND));
            return std::nullopt;
        case WM_CLOSE:
            if (MayClose()) OnClose();
            return 0;
        default:
            return OnFrameMessage(message, wParam, lParam);
    }
}

std::optional<LRESULT> MainWindow::OnListMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CONTEXTMENU) {
        const HWND list = panes.list.Handle(), from = reinterpret_cast<HWND>(wParam);
        if (from != list && from != ListView_GetHeader(list))
            return HandleListMessage(message, wParam, lParam);
        panes.list.ShowMenu(lParam);
        return 0;
    }
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    if (header.idFrom == IDC_DEVICES) panes.list.OnNotify(header);
    if (header.idFrom == IDC_DEVICES && header.code == LVN_ITEMACTIVATE) OnCommand(IDM_DETAILS, 0);
    panes.details.OnNotify(header);
    return HandleListMessage(message, wParam, lParam);
}

std::optional<LRESULT> MainWindow::OnFrameMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            panes.Place();
            return 0;
        case WM_GETMINMAXINFO: {
            const SIZE least = panes.MinimumSize();
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
            return 0;
        }
        case WM_SETCURSOR:
        case WM_LBUTTONDOWN:
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
            return panes.OnMouse(message) ? std::optional<LRESULT>(TRUE) : std::nullopt;
        case WM_DPICHANGED:
            panes.list.StoreColumns();
            panes.SetDpi(HIWORD(wParam));
            panes.list.ShowColumns();
            TakeSuggested(Handle(), *reinterpret_cast<const RECT*>(lParam));
            panes.Place();
            return 0;
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED:
        case WM_SETTINGCHANGE:
            panes.SetDpi(panes.Dpi());
            panes.Place();
            return std::nullopt;
        // The system allows no dialog, and would end the program while it waits for one.
        case WM_QUERYENDSESSION:
            return TRUE;
        case WM_ENDSESSION:
            if (wParam) OnSessionEnd(lParam);
            return 0;
        case WM_DESTROY:
            Attach<MainWindow>(Handle(), nullptr);
            state.window = nullptr;
            PostQuitMessage(0);
            return 0;
        default:
            return std::nullopt;
    }
}

// The process may end right after this.
void MainWindow::OnSessionEnd(LPARAM how) {
    state.isSessionEnding = true;
    panes.SaveSettings();
    EndEarly();
    scans.SaveForNextStart();
    // An installer waits for the process. Open dialogs end by this too.
    if (how & ENDSESSION_CLOSEAPP) PostQuitMessage(state.exitCode);
}

void MainWindow::OnException() noexcept {
    if (state.options.exit) {  // what would have ended the program may have failed
        state.exitCode = kFailed;
        PostMessageW(state.window, WM_CLOSE, 0, 0);
    }
    if (state.options.exit || !state.isSessionEnding)
        ShowException(state.window, state.options.exit);
}

void MainWindow::ApplyOptions() {
    const StartOptions& options = state.options;
    if (!options.exit) state.progress.SetNote(UseKept(options.profile, state.credentials));
    if (!options.profile.empty()) panes.bar.UseV3(true);
    if (options.lookFor) panes.bar.Choose(*options.lookFor);
    if (!options.communities.empty()) state.credentials.communities = options.communities;
    state.session.view.ShowOnlyPrinters(panes.bar.LooksForPrinters());
}

void MainWindow::OnSelected() {
    const DeviceRow* row = state.session.view.SelectedRow();
    if (row) state.changes.Unmark(*row);
    panes.ShowDetails();
    devices.Ask(false);
}

void MainWindow::ShowStatus() {
    const bool isBusy = state.IsBusy();
    if (!isBusy) state.progress.SetIdle();
    // Meanwhile the status changes by itself.
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
    } else if (id == IDC_PRESET && code == CBN_SELCHANGE) {
        panes.bar.ShowNote();
        panes.Place();  // the note may need another line
        state.session.view.ShowOnlyPrinters(panes.bar.LooksForPrinters());
        panes.ShowRows();
    } else if (RunCommand(*this, static_cast<unsigned>(id))) {
        ShowStatus();
    }
}

void MainWindow::FindOrStop() {
    if (state.IsBusy()) return StopAll();
    searches.Start();
}

void MainWindow::StopAll() {
    if (!state.IsBusy()) return;
    state.workers->Stop();
    state.progress.Stop();
    devices.doctor.Stop(state.window);
}

void MainWindow::RestartTimer(unsigned minutes) {
    KillTimer(Handle(), kRefreshTimer);
    if (minutes != 0) SetTimer(Handle(), kRefreshTimer, minutes * 60000, nullptr);
}

void MainWindow::OnResults() {
    KillTimer(state.window, kFrameTimer);
    ResultHandler handler(*this);
    state.queue.RunAll(handler);
    if (state.session.Refresh()) {
        scans.RecordChanges();
        panes.ShowRows();
    }
    calls.Refresh();
    devices.walk.Refresh();
    if (searches.IsOver()) {
        InvalidateRect(panes.list.Handle(), nullptr, TRUE);
        searches.Finish();
        panes.ShowDetails();  // protocols are no longer pending
    }
    if (state.workers && !state.workers->IsBusy()) state.session.EndReadings();
    ShowStatus();
}

void MainWindow::OnTimer(UINT_PTR timer) {
    if (timer == kRefreshTimer)  // what is not possible now is tried again soon
        RestartTimer(searches.Repeat() ? state.settings.refreshMinutes : 1);
    if (state.workers && state.progress.IsSearching() && state.progress.IsStopping())
        state.workers->RepeatStop();
    OnResults();  // so that the status is not ahead of them
}

// A dialog's caller would continue without its window.
bool MainWindow::MayClose() {
    return state.workers && IsWindowEnabled(state.window) &&
           (searches.WillSave() || scans.MayDrop(IDS_ASK_SAVE));
}

// Saves the answers so far of the command line's search.
void MainWindow::EndEarly() {
    ResultHandler handler(*this);
    state.queue.RunAll(handler);
    searches.EndStartSearch();
}

// Handles messages meanwhile: the system must not think that the program hangs.
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
    // Also if something fails meanwhile: a hidden window cannot be closed.
    struct Destroyed {
        ~Destroyed() { DestroyWindow(window); }
        HWND window;
    } const destroyed{state.window};
    const bool willSave = searches.WillSave();
    // The window disappears at once, although a request may take up to 12 s more; but not if a file
    // is written then, since a question about that must have a window to be seen with.
    ShowOwnedPopups(state.window, FALSE);
    if (!willSave) ShowWindow(state.window, SW_HIDE);
    panes.SaveSettings();
    scans.ForgetKept();
    EndWorkers();
    EndEarly();
    if (willSave) scans.MayDrop(IDS_ASK_SAVE);  // asks for another file if that failed
}

}  // namespace vndiscover::host
