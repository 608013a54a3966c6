#include "window/main/main_window.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "platform/messages.h"
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
constexpr UINT kFrameMs = 100;

}  // namespace

struct MainWindow::Message {
    WPARAM wParam;
    LPARAM lParam;
    std::optional<LRESULT> result = 0;
};
struct MainWindow::MessageRow {
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
    {WM_QUERYENDSESSION,
     [](MainWindow& self, Message& message) { message.result = self.MayClose(); }},
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
     }},
    {WM_DESTROY, [](MainWindow& self, Message&) {
         Attach<MainWindow>(self.Handle(), nullptr);
         self.state.window = nullptr;
         PostQuitMessage(0);
     }}};

MainWindow::MainWindow(Engine& engine, StartOptions options)
    : list(state.session, {[this] {
                               details.Show();
                               devices.Ask(false);
                           },
                           [this]() -> unsigned {
                               if (state.session.view.Total() != 0) return IDS_ALL_HIDDEN;
                               const bool isOver =
                                   state.progress.HasSearched() && !state.progress.IsSearching();
                               return isOver ? IDS_NONE_FOUND : IDS_EMPTY;
                           }}) {
    state.options = std::move(options);
    state.showRows = [this] { ShowRows(); };
    state.handleResults = [this] { OnResults(); };
    const INITCOMMONCONTROLSEX controls = {
        sizeof controls, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_TAB_CLASSES};
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
    SetWindowPos(state.window, nullptr, 0, 0, Scaled(1100, dpi_), Scaled(620, dpi_),
                 SWP_NOMOVE | SWP_NOZORDER);
    state.workers = std::make_unique<Workers>(engine, state.queue);
    state.workers->ReadAdapters();
    ShowRows();
    ShowStatus();
    if (!state.options.exit) ShowWindow(state.window, SW_SHOWDEFAULT);
    SetFocus(GetDlgItem(state.window, IDC_FIND));
    if (!state.options.profile.empty()) bar.UseV3(true);
    if (state.options.sweep) OnCommand(IDC_FIND, 0);
}

MainWindow::~MainWindow() {
    state.workers.reset();
    if (state.window) DestroyWindow(state.window);
}

int MainWindow::Run() {
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
        Message handled = {wParam, lParam};
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
    CreateControl(window, STATUSCLASSNAMEW, IDS_READY, SBARS_SIZEGRIP, IDC_STATUS);
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

void MainWindow::StoreSettings() {
    if (state.options.exit) return;
    bar.Store(settings_);
    list.StoreColumns(settings_);
    SaveSettings(settings_);
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
    input.textHeight = MulDiv(std::abs(font.lfHeight), 4, 3);
    bar.Measure(font_.Get(), input);
    const Layout layout = Arrange(input);
    bar.Place(layout.bar, input);
    const auto move = [&](int id, const Box& box) {
        MoveWindow(GetDlgItem(state.window, id), box.x, box.y, box.width, box.height, TRUE);
    };
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
    const std::wstring title = view.Count() == view.Total()
                                   ? Text(IDS_SHOWN, {count})
                                   : Text(IDS_SHOWN_OF, {count, std::to_wstring(view.Total())});
    ChangeText(GetDlgItem(state.window, IDC_DEVICES_LABEL), title);
    details.Show();
}

void MainWindow::ShowStatus() {
    ChangeText(GetDlgItem(state.window, IDC_STATUS), state.StatusText());
}

void MainWindow::OnCommand(int id, int code) {
    if (id == IDC_FILTER && code == EN_CHANGE) {
        state.session.view.Filter(bar.FilterText());
        ShowRows();
    } else if (RunCommand(*this, static_cast<unsigned>(id))) {
        ShowStatus();
    }
}

void MainWindow::FindOrStop() {
    if (state.progress.IsSearching()) return StopAll();
    searches.Start();
}

void MainWindow::StopAll() {
    if (!state.progress.IsSearching() && !state.progress.IsAsking()) return;
    searches.Stop();
    devices.doctor.Stop(state.window);
}

void MainWindow::OnResults() {
    KillTimer(state.window, kFrameTimer);
    state.queue.RunAll(handler_);
    if (state.session.Refresh()) ShowRows();
    calls.Refresh();
    devices.walk.Refresh();
    if (searches.IsOver()) {
        InvalidateRect(list.Handle(), nullptr, TRUE);
        details.Show();  // protocols are no longer pending
        searches.Finish();
    }
    if (state.workers && !state.workers->IsBusy())
        KillTimer(state.window, WindowState::kStatusTimer);
    ShowStatus();
}

void MainWindow::OnTimer(UINT_PTR timer) {
    if (timer == kFrameTimer) return OnResults();
    if (state.workers && state.progress.IsStopping()) state.workers->RepeatStop();
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
