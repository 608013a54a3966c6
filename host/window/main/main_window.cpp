#include "window/main/main_window.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "platform/messages.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "window/controls/clipboard.h"
#include "window/controls/dpi.h"
#include "window/dialogs/dialogs.h"
#include "window/main/commands.h"
#include "window/main/layout.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr UINT_PTR kFrameTimer = 1;
constexpr UINT_PTR kRefreshTimer = 3;  // 2 is that of the status
constexpr UINT kFrameMs = 100;

}  // namespace

struct MainWindow::Message {
    UINT id;
    WPARAM wParam;
    LPARAM lParam;
    std::optional<LRESULT> result = 0;
};
struct MainWindow::MessageRow {
    static void KeepFocus(MainWindow& self, Message& message) {
        self.focus_.OnMessage(self.Handle(), message.id, message.wParam,
                              GetDlgItem(self.Handle(), IDC_FIND));
        message.result.reset();
    }
    // Controls hear of colours and fonts from their window alone.
    static void Redraw(MainWindow& self, Message& message) {
        for (HWND child = GetWindow(self.Handle(), GW_CHILD); child;
             child = GetWindow(child, GW_HWNDNEXT))
            SendMessageW(child, message.id, message.wParam, message.lParam);
        self.SetDpi(self.dpi_);
        message.result.reset();
    }
    UINT message;
    void (*handle)(MainWindow& self, Message& message);
};
const MainWindow::MessageRow MainWindow::kMessages[] = {
    // The queue is not emptied until then, so that one frame handles all results.
    {WindowState::kResults,
     [](MainWindow& self, Message&) { SetTimer(self.Handle(), kFrameTimer, kFrameMs, nullptr); }},
    {WM_TIMER, [](MainWindow& self, Message& timer) { self.OnTimer(timer.wParam); }},
    {WM_SIZE, [](MainWindow& self, Message&) { self.Place(); }},
    {WM_GETMINMAXINFO,
     [](MainWindow& self, Message& size) {
         reinterpret_cast<MINMAXINFO*>(size.lParam)->ptMinTrackSize = {Scaled(520, self.dpi_),
                                                                       Scaled(360, self.dpi_)};
     }},
    {WM_DPICHANGED,
     [](MainWindow& self, Message& dpi) {
         self.list.StoreColumns(self.settings_);
         self.SetDpi(HIWORD(dpi.wParam));
         self.ShowColumns();
         const auto* box = reinterpret_cast<const RECT*>(dpi.lParam);
         SetWindowPos(self.Handle(), nullptr, box->left, box->top, box->right - box->left,
                      box->bottom - box->top, SWP_NOZORDER | SWP_NOACTIVATE);
         self.Place();
     }},
    {WM_ACTIVATE, MessageRow::KeepFocus},
    {WM_SETFOCUS, MessageRow::KeepFocus},
    {WM_SYSCOLORCHANGE, MessageRow::Redraw},
    {WM_THEMECHANGED, MessageRow::Redraw},
    {WM_SETTINGCHANGE, MessageRow::Redraw},
    {WM_INITMENUPOPUP,
     [](MainWindow& self, Message& menu) {
         EnableCommands(self, reinterpret_cast<HMENU>(menu.wParam));
     }},
    {WM_COMMAND,
     [](MainWindow& self, Message& command) {
         self.OnCommand(LOWORD(command.wParam), HIWORD(command.wParam));
     }},
    {WM_NOTIFY,
     [](MainWindow& self, Message& message) {
         const auto& header = *reinterpret_cast<const NMHDR*>(message.lParam);
         if (header.idFrom == IDC_DEVICES) self.list.OnNotify(header);
         self.details.OnNotify(header);
         message.result = HandleListMessage(WM_NOTIFY, message.wParam, message.lParam);
     }},
    {WM_CONTEXTMENU,
     [](MainWindow& self, Message& message) {
         const auto control = reinterpret_cast<HWND>(message.wParam);
         const HWND own = self.list.Handle();
         if (control == own || control == ListView_GetHeader(own)) {
             self.list.ShowMenu(message.lParam);
         } else {
             message.result = HandleListMessage(WM_CONTEXTMENU, message.wParam, message.lParam);
         }
     }},
    {kCopied,
     [](MainWindow& self, Message& copying) {
         self.state.progress.SetNote(copying.wParam ? L"" : Text(IDS_NOT_COPIED));
         self.ShowStatus();
     }},
    // The system allows no dialog, and would end the program while it waits for one.
    {WM_QUERYENDSESSION, [](MainWindow&, Message& message) { message.result = TRUE; }},
    {WM_CLOSE,
     [](MainWindow& self, Message&) {
         if (self.MayClose()) self.OnClose();
     }},
    {WM_ENDSESSION,
     [](MainWindow& self, Message& end) {
         if (!end.wParam) return;
         // The process may end right after this.
         self.StoreSettings();
         if (self.searches.WillSave()) self.EndEarly();
         self.scans.KeepForNextStart();
     }},
    {WM_DESTROY, [](MainWindow& self, Message&) {
         Attach<MainWindow>(self.Handle(), nullptr);
         self.state.window = nullptr;
         PostQuitMessage(0);
     }}};

MainWindow::MainWindow(Engine& engine, StartOptions options)
    : list(state.session, state.changes,
           {[this] {
                state.changes.Unmark(*state.session.view.SelectedRow());
                ShowDetails();
                devices.Ask(false);
            },
            [this]() -> unsigned {
                if (state.session.view.Total() != 0) return IDS_ALL_HIDDEN;
                const bool isOver = state.progress.HasSearched() && !state.progress.IsSearching();
                return isOver ? IDS_NONE_FOUND : IDS_EMPTY;
            }}) {
    state.options = std::move(options);
    state.showRows = [this] { ShowRows(); };
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
    CreateControls();
    SetDpi(DpiOf(state.window));
    RestoreSettings();
    PlaceWindow();
    state.workers = std::make_unique<Workers>(engine, state.queue);
    state.workers->ReadAdapters();
    ShowRows();
    ShowStatus();
    if (!state.options.exit) {  // nothing of a script comes to the front
        ShowWindow(state.window, settings_.isMaximized ? SW_SHOWMAXIMIZED : SW_SHOWDEFAULT);
        SetFocus(GetDlgItem(state.window, IDC_FIND));
    }
    ApplyOptions();
    RefreshEvery(settings_.refreshMinutes);
    if (state.options.sweep) OnCommand(IDC_FIND, 0);
}

MainWindow::~MainWindow() {
    state.workers.reset();
    if (state.window) DestroyWindow(state.window);
}

int MainWindow::Run() {
    if (!state.options.exit && !state.options.sweep) scans.OfferKept();
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) Dispatch(message);
    return state.exitCode;
}

void MainWindow::Dispatch(MSG& message) {
    // While text is edited, Ctrl+C copies that.
    const int copy = message.message == WM_KEYDOWN ? ListControl::CopyCommandOf(message.wParam) : 0;
    const ListControl* from = copy != 0 ? ListControl::Of(message.hwnd) : nullptr;
    if (from == &list.List()) return OnCommand(copy, 0);
    if (from) return from->Copy(copy);
    if (TranslateAcceleratorW(state.window, keys_.Get(), &message)) return;
    const HWND active = GetActiveWindow();
    if (IsDialogMessageW(active ? active : state.window, &message)) return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

std::optional<LRESULT> MainWindow::OnMessage(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
    for (const MessageRow& row : kMessages) {
        if (row.message != message) continue;
        Message handled = {message, wParam, lParam};
        row.handle(*this, handled);
        return handled.result;
    }
    return std::nullopt;
}

void MainWindow::OnException() noexcept {
    if (state.options.exit) state.exitCode = kFailed;
    ShowException(state.window, state.options.exit);
}

// In tab order.
void MainWindow::CreateControls() {
    const HWND window = state.window;
    bar.Create(window);
    CreateControl(window, L"STATIC", IDS_DEVICES, SS_NOPREFIX, IDC_DEVICES_LABEL);
    list.Create(window);
    CreateControl(window, L"STATIC", IDS_DETAILS, SS_NOPREFIX, IDC_DETAILS_LABEL);
    details.Create(window);
    const HWND status =
        CreateControl(window, STATUSCLASSNAMEW, IDS_READY, SBARS_SIZEGRIP, IDC_STATUS);
    ShowWindow(CreateControl(status, PROGRESS_CLASSW, 0, 0, IDC_READ_BAR), SW_HIDE);
}

void MainWindow::SetDpi(int dpi) {
    dpi_ = dpi;
    list.SetDpi(dpi);
    OwnedFont font = MakeMessageFont(dpi);
    for (HWND child = GetWindow(state.window, GW_CHILD); child;
         child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), TRUE);
    font_ = std::move(font);
}

void MainWindow::RestoreSettings() {
    DeviceColumns::SetDefaults(settings_);
    SearchBar::SetDefaults(settings_);
    // A script gets the same sweep whatever settings a user has saved.
    if (!state.options.exit) settings_ = LoadSettings().value_or(settings_);
    bar.Restore(settings_);
    ShowColumns();
}

void MainWindow::ApplyOptions() {
    const StartOptions& options = state.options;
    if (!options.profile.empty()) bar.UseV3(true);
    if (options.lookFor) bar.Choose(*options.lookFor);
    if (!options.communities.empty()) state.credentials.communities = options.communities;
    state.session.view.ShowOnlyPrinters(bar.LooksForPrinters());
}

void MainWindow::StoreSettings() {
    if (state.options.exit) return;
    WINDOWPLACEMENT place = {};
    place.length = sizeof place;
    GetWindowPlacement(state.window, &place);
    settings_.place = place.rcNormalPosition;
    settings_.isMaximized = place.showCmd == SW_SHOWMAXIMIZED;
    bar.Store(settings_);
    list.StoreColumns(settings_);
    SaveSettings(settings_);
}

// Where it was when it was closed last, if a monitor is there.
void MainWindow::PlaceWindow() {
    const RECT& place = settings_.place;
    if (IsRectEmpty(&place) || !MonitorFromRect(&place, MONITOR_DEFAULTTONULL)) {
        SetWindowPos(state.window, nullptr, 0, 0, Scaled(1100, dpi_), Scaled(620, dpi_),
                     SWP_NOMOVE | SWP_NOZORDER);
        return;
    }
    SetWindowPos(state.window, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER);
}

void MainWindow::ToggleColumn(Column column) {
    list.StoreColumns(settings_);
    const uint32_t hidden = settings_.hidden ^ 1u << static_cast<unsigned>(column);
    if (hidden == kAllColumns) return;  // one must stay
    settings_.hidden = hidden;
    ShowColumns();
    ShowRows();
}

void MainWindow::ShowColumns() {
    state.session.view.Hide(settings_.hidden);
    list.ShowColumns(settings_);
    for (unsigned index = 0; index < kColumnCount; ++index) {
        const bool isShown = list.Columns().IsShown(static_cast<Column>(index));
        CheckMenuItem(GetMenu(state.window), IDM_COLUMN + index,
                      isShown ? MF_CHECKED : MF_UNCHECKED);
    }
}

void MainWindow::Place() {
    RECT client = {}, status = {};
    GetClientRect(state.window, &client);
    const HWND statusBar = GetDlgItem(state.window, IDC_STATUS);
    SendMessageW(statusBar, WM_SIZE, 0, 0);
    GetWindowRect(statusBar, &status);
    LOGFONTW font = {};
    GetObjectW(font_.Get(), sizeof font, &font);
    LayoutInput input;
    input.width = client.right;
    input.height = client.bottom;
    input.statusHeight = status.bottom - status.top;
    input.dpi = dpi_;
    input.splitPercent = settings_.splitPercent;
    input.textHeight = MulDiv(std::abs(font.lfHeight), 4, 3);
    bar.Measure(font_.Get(), input);
    const Layout layout = Arrange(input);
    bar.Place(layout.bar, input);
    const auto move = [&](int id, const Box& box) {
        MoveWindow(GetDlgItem(state.window, id), box.x, box.y, box.width, box.height, TRUE);
    };
    move(IDC_PRESET_NOTE, layout.note);
    const int barWidth = std::min(Scaled(160, dpi_), static_cast<int>(client.right) / 4);
    MoveWindow(GetDlgItem(statusBar, IDC_READ_BAR), client.right - barWidth - Scaled(20, dpi_),
               Scaled(4, dpi_), barWidth, input.statusHeight - Scaled(7, dpi_), TRUE);
    move(IDC_DEVICES_LABEL, layout.devicesLabel);
    move(IDC_DEVICES, layout.devices);
    move(IDC_DETAILS_LABEL, layout.detailsLabel);
    const Box& box = layout.details;
    details.Resize({box.x, box.y, box.x + box.width, box.y + box.height}, dpi_);
}

void MainWindow::ShowRows() {
    state.session.Refresh();
    list.Show();
    const DeviceView& view = state.session.view;
    const std::wstring count = std::to_wstring(view.Count());
    std::wstring title = view.Count() == view.Total()
                             ? Text(IDS_SHOWN, {count})
                             : Text(IDS_SHOWN_OF, {count, std::to_wstring(view.Total())});
    if (view.Others() != 0) title = Text(IDS_SHOWN_OTHERS, {title, std::to_wstring(view.Others())});
    ChangeText(GetDlgItem(state.window, IDC_DEVICES_LABEL), title);
    ShowDetails();
}

void MainWindow::ShowDetails() {
    const DeviceRow* row = state.session.view.SelectedRow();
    std::wstring title = Text(IDS_DETAILS);
    for (const Column column : {Column::kName, Column::kModel, Column::kAddress}) {
        if (!row || row->Text(column).empty()) continue;
        title = Text(IDS_DETAILS_OF, {ToWide(row->Text(column))});
        break;
    }
    ChangeText(GetDlgItem(state.window, IDC_DETAILS_LABEL), title);
    details.Show();
}

void MainWindow::ShowStatus() {
    const bool isSending =
        state.progress.IsSearching() || (state.workers && state.workers->IsSending());
    if (!isSending) state.progress.SetIdle();
    bar.SetButton(!isSending ? IDS_FIND : state.progress.IsStopping() ? IDS_STOPPING : IDS_STOP);
    ChangeText(GetDlgItem(state.window, IDC_STATUS), state.StatusText());
    ShowReadBar(state.Now());
}

void MainWindow::ShowReadBar(const Progress::Status& status) const {
    const HWND readBar = GetDlgItem(GetDlgItem(state.window, IDC_STATUS), IDC_READ_BAR);
    const bool isReading = status.kind == Progress::Kind::kReadingAll;
    if (isReading) {
        SendMessageW(readBar, PBM_SETRANGE32, 0, static_cast<LPARAM>(status.total));
        SendMessageW(readBar, PBM_SETPOS, status.count, 0);
    }
    ShowWindow(readBar, isReading ? SW_SHOWNA : SW_HIDE);
}

void MainWindow::OnCommand(int id, int code) {
    if (id == IDC_FILTER && code == EN_CHANGE) {
        state.session.view.Filter(bar.FilterText());
        ShowRows();
    } else if (id == IDC_PRESET && code == CBN_SELCHANGE) {
        bar.ShowNote();
        state.session.view.ShowOnlyPrinters(bar.LooksForPrinters());
        ShowRows();
    } else if (RunCommand(*this, static_cast<unsigned>(id))) {
        ShowStatus();
    }
}

void MainWindow::FindOrStop() {
    if (state.progress.IsSearching() || state.workers->IsSending()) return StopAll();
    searches.Start();
}

void MainWindow::RefreshEvery(unsigned minutes) {
    settings_.refreshMinutes = minutes;
    KillTimer(Handle(), kRefreshTimer);
    if (minutes != 0) SetTimer(Handle(), kRefreshTimer, minutes * 60000, nullptr);
}

// Asks the user nothing, who may be away.
void MainWindow::Refresh() {
    const bool needsUser = bar.UsesV3() && !state.credentials.security;
    if (!state.file.empty() || needsUser || !IsWindowEnabled(Handle()) ||
        state.progress.IsSearching() || state.workers->IsSending())
        return;
    searches.Start();
    ShowStatus();
}

void MainWindow::TakeChanges() {
    if (state.progress.IsSearching()) return;  // whether a device is missed is not known yet
    const std::string time = UtcNow();
    bool hasChanged = false;
    for (const DeviceRow& row : state.session.view.AllRows())
        hasChanged |= state.changes.Take(row, time);
    if (!hasChanged) return;
    const DeviceRow* const seen = state.session.view.SelectedRow();
    if (seen && GetActiveWindow() == Handle()) state.changes.Unmark(*seen);
    FLASHWINFO flash = {sizeof flash, Handle(), FLASHW_TRAY | FLASHW_TIMERNOFG, 0, 0};
    FlashWindowEx(&flash);
    changes.Show(ChangeRows());
}

std::vector<TableWindow::Row> MainWindow::ChangeRows() const {
    std::vector<TableWindow::Row> rows;
    for (const StateChange& one : state.changes.Changes())
        rows.push_back(
            {LocalTime(one.time), ToWide(one.device), ToWide(one.before), ToWide(one.after)});
    return rows;
}

void MainWindow::OpenChanges() {
    const std::wstring count = std::to_wstring(state.changes.Changes().size());
    changes.Open(Handle(), Text(IDS_CHANGES_TITLE), Text(IDS_CHANGES_NOTE, {count}),
                 {{IDS_CALL_TIME, 140},
                  {IDS_CHANGE_DEVICE, 260},
                  {IDS_CHANGE_BEFORE, 150},
                  {IDS_CHANGE_AFTER, 150}},
                 ChangeRows());
}

void MainWindow::StopAll() {
    if (!state.progress.IsSearching() && !state.workers->IsSending()) return;
    state.workers->Stop();
    state.progress.Stop();
    devices.doctor.Stop(state.window);
}

void MainWindow::OnResults() {
    KillTimer(state.window, kFrameTimer);
    state.queue.RunAll(handler_);
    if (state.session.Refresh()) {
        TakeChanges();
        ShowRows();
    }
    calls.Refresh();
    devices.walk.Refresh();
    if (searches.IsOver()) {
        InvalidateRect(list.Handle(), nullptr, TRUE);
        searches.Finish();
        ShowDetails();  // protocols are no longer pending
    }
    if (state.workers && !state.workers->IsBusy()) {
        state.session.EndReadings();
        KillTimer(state.window, WindowState::kStatusTimer);
    }
    ShowStatus();
}

void MainWindow::OnTimer(UINT_PTR timer) {
    if (timer == kFrameTimer) return OnResults();
    if (timer == kRefreshTimer) return Refresh();
    if (state.workers && state.progress.IsSearching() && state.progress.IsStopping())
        state.workers->RepeatStop();
    devices.walk.Refresh();
    ShowStatus();
}

// A dialog's caller would continue without its window.
bool MainWindow::MayClose() {
    return IsWindowEnabled(state.window) && (searches.WillSave() || scans.MayDrop());
}

// Saves the answers so far of the command line's search.
void MainWindow::EndEarly() {
    state.queue.RunAll(handler_);
    searches.EndEarly();
}

void MainWindow::OnClose() {
    const bool willSave = searches.WillSave();
    // The window disappears at once, although a request may take up to 12 s more.
    ShowOwnedPopups(state.window, FALSE);
    ShowWindow(state.window, SW_HIDE);
    StoreSettings();
    state.workers.reset();
    EndEarly();
    if (willSave) scans.MayDrop();  // asks for another file if that one cannot be written
    DestroyWindow(state.window);
}

}  // namespace vndiscover::host
