#include "window/main/main_window.h"

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <stdexcept>

#include "model/scan/scan_report.h"
#include "platform/messages.h"
#include "platform/wide_text.h"
#include "values/ip_address.h"
#include "values/object_names.h"
#include "window/controls/clipboard.h"
#include "window/controls/dpi.h"
#include "window/dialogs/dialogs.h"
#include "window/dialogs/snmp_dialog.h"
#include "window/main/layout.h"
#include "window/main/menu.h"
#include "window/pages/page_window.h"
#include "window/resource.h"
#include "window/store/profiles.h"
#include "window/store/scan_files.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr UINT kEvents = WM_APP + 1;
constexpr UINT_PTR kFrameTimer = 1;
constexpr UINT_PTR kStatusTimer = 2;
constexpr UINT kFrameMs = 100;
constexpr UINT kStatusMs = 250;
constexpr ULONGLONG kNoteMs = 4000;  // before progress is shown again
constexpr int kBar[] = {IDC_FIND, IDC_PRESET_LABEL, IDC_PRESET, IDC_V1,           IDC_V3,
                        IDC_WSD,  IDC_IPV4,         IDC_IPV6,   IDC_FILTER_LABEL, IDC_FILTER};
constexpr int kTicks[] = {IDC_V1, IDC_V3, IDC_WSD, IDC_IPV4, IDC_IPV6};
constexpr uint32_t kDefaultTicks = 0b01101;  // SNMPv1, WS-Discovery, IPv4
constexpr int kGroupStarts[] = {IDC_PRESET_LABEL, IDC_V1, IDC_IPV4, IDC_FILTER_LABEL};
constexpr const char* kPresets[] = {".1.3.6.1.4.1.5963.43.5.1.1.1.1", "hrDeviceDescr.1",
                                    "sysName.0"};

enum ExitCode { kFound = 0, kNone = 1, kFailed = 2 };  // kNone: or not saved

}  // namespace

const MainWindow::FileCommand MainWindow::kFileCommands[] = {
    {IDM_OPEN, IDS_SCAN_FILES, L"json", false, &MainWindow::OpenFrom},
    {IDM_SAVE, IDS_SCAN_FILES, L"json", true, &MainWindow::SaveTo},
    {IDM_COMPARE, IDS_SCAN_FILES, L"json", false, &MainWindow::CompareWith},
    {IDM_CSV, IDS_CSV_FILES, L"csv", true, &MainWindow::SaveCsvTo},
    {IDM_JSON, IDS_JSON_FILES, L"json", true, &MainWindow::SaveJsonTo}};

MainWindow::MainWindow(Engine& engine, StartOptions options)
    : engine_(engine),
      options_(std::move(options)),
      events_([this] { PostMessageW(window_, kEvents, 0, 0); }) {
    const INITCOMMONCONTROLSEX controls = {
        sizeof controls, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_TAB_CLASSES};
    InitCommonControlsEx(&controls);
    const wchar_t* const type = RegisterType(L"VnBrowser", WindowProcedure<MainWindow>);
    keys_ = LoadAcceleratorsW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDR_KEYS));
    window_ =
        CreateWindowExW(WS_EX_CONTROLPARENT, type, Text(IDS_TITLE).c_str(),
                        WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT, 0, 0,
                        nullptr, MakeMenu().Release(), GetModuleHandleW(nullptr), nullptr);
    if (!window_) throw std::runtime_error(ToUtf8(Text(IDS_NO_WINDOW)));
    Attach(window_, this);
    dpi_ = DpiOf(window_);
    CreateControls();
    SetFonts();
    RestoreSettings();
    SetWindowPos(window_, nullptr, 0, 0, MulDiv(1100, dpi_, 96), MulDiv(620, dpi_, 96),
                 SWP_NOMOVE | SWP_NOZORDER);
    workers_ = std::make_unique<Workers>(engine_, events_);
    workers_->LookAtAdapters();
    ShowRows();
    ShowStatus();
    if (!options_.exit) ShowWindow(window_, SW_SHOWDEFAULT);
    SetFocus(GetDlgItem(window_, IDC_FIND));
    if (!options_.profile.empty()) CheckDlgButton(window_, IDC_V3, BST_CHECKED);
    if (options_.sweep) StartOrStop();
}

MainWindow::~MainWindow() {
    workers_.reset();
    if (window_) DestroyWindow(window_);
}

int MainWindow::Run() {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) Dispatch(message);
    return exitCode_;
}

void MainWindow::Dispatch(MSG& message) {
    // While text is edited, Ctrl+C copies that.
    const int copy = message.message == WM_KEYDOWN ? ListControl::CopyCommandOf(message.wParam) : 0;
    if (copy != 0 && message.hwnd == devices_.Handle()) return OnCommand(copy, 0);
    const ListControl* list = copy != 0 ? ListControl::Of(message.hwnd) : nullptr;
    if (list) return list->Copy(copy);
    if (TranslateAcceleratorW(window_, keys_, &message)) return;
    const HWND active = GetActiveWindow();
    if (IsDialogMessageW(active ? active : window_, &message)) return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

void MainWindow::OnException() noexcept {
    if (options_.exit) exitCode_ = kFailed;
    ShowException(window_, options_.exit);
}

std::optional<LRESULT> MainWindow::OnMessage(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case kEvents:
            // The queue is not emptied until then, so that one frame handles all events.
            SetTimer(window_, kFrameTimer, kFrameMs, nullptr);
            return 0;
        case WM_TIMER:
            if (wParam == kFrameTimer) OnFrame();
            if (wParam == kStatusTimer) {
                if (isStopping_) workers_->RepeatStop();
                walk_.Refresh();
                ShowStatus();
            }
            return 0;
        case WM_SIZE:
            Place();
            return 0;
        case WM_GETMINMAXINFO:
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {MulDiv(520, dpi_, 96),
                                                                     MulDiv(360, dpi_, 96)};
            return 0;
        case WM_DPICHANGED: {
            devices_.StoreColumns(settings_);
            dpi_ = HIWORD(wParam);
            SetFonts();
            ShowColumns();
            const auto* place = reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(window_, nullptr, place->left, place->top, place->right - place->left,
                         place->bottom - place->top, SWP_NOZORDER | SWP_NOACTIVATE);
            Place();
            return 0;
        }
        case WM_COMMAND:
            OnCommand(LOWORD(wParam), HIWORD(wParam));
            return 0;
        case WM_NOTIFY: {
            const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
            if (header.idFrom == IDC_DEVICES) devices_.OnNotify(header);
            details_.OnNotify(header);
            return HandleListMessage(message, wParam, lParam);
        }
        case WM_CONTEXTMENU: {
            const auto control = reinterpret_cast<HWND>(wParam);
            if (control != devices_.Handle() && control != ListView_GetHeader(devices_.Handle()))
                return HandleListMessage(message, wParam, lParam);
            devices_.ShowMenu(lParam);
            return 0;
        }
        case kCopied:
            note_ = wParam ? L"" : Text(IDS_NOT_COPIED);
            shownNote_.clear();  // the same one is shown again
            ShowStatus();
            return 0;
        case WM_QUERYENDSESSION:
            return MayClose();
        case WM_CLOSE: {
            if (!MayClose()) return 0;
            const bool willSave = WillSave();
            // The window disappears at once, although a request may take up to 12 s more.
            ShowOwnedPopups(window_, FALSE);
            ShowWindow(window_, SW_HIDE);
            StoreSettings();
            workers_.reset();
            EndEarly();
            if (willSave) MayDropScan();  // asks for another file if that one cannot be written
            DestroyWindow(window_);
            return 0;
        }
        case WM_ENDSESSION:
            if (!wParam) return 0;
            // The process may end right after this.
            StoreSettings();
            if (WillSave()) EndEarly();
            return 0;
        case WM_DESTROY:
            Attach<MainWindow>(window_, nullptr);
            window_ = nullptr;
            PostQuitMessage(0);
            return 0;
        default:
            return std::nullopt;
    }
}

HWND MainWindow::CreateControl(const wchar_t* type, unsigned text, DWORD style, int id,
                               DWORD extended) {
    return CreateWindowExW(extended, type, text ? Text(text).c_str() : L"",
                           WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, window_,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                           GetModuleHandleW(nullptr), nullptr);
}

// In tab order. A screen reader uses the label before a control as its name.
void MainWindow::CreateControls() {
    constexpr DWORD kTick = BS_AUTOCHECKBOX | WS_TABSTOP;
    CreateControl(L"BUTTON", IDS_FIND, BS_PUSHBUTTON | WS_TABSTOP, IDC_FIND);
    CreateControl(L"STATIC", IDS_PRESET_LABEL, SS_CENTERIMAGE, IDC_PRESET_LABEL);
    const HWND preset =
        CreateControl(L"COMBOBOX", 0, CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, IDC_PRESET);
    for (const unsigned id : {IDS_PRESET_KNOWN, IDS_PRESET_PRINTERS, IDS_PRESET_ALL})
        SendMessageW(preset, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Text(id).c_str()));
    CreateControl(L"BUTTON", IDS_V1, kTick, IDC_V1);
    CreateControl(L"BUTTON", IDS_V3, kTick, IDC_V3);
    CreateControl(L"BUTTON", IDS_WSD, kTick, IDC_WSD);
    CreateControl(L"BUTTON", IDS_IPV4, kTick, IDC_IPV4);
    CreateControl(L"BUTTON", IDS_IPV6, kTick, IDC_IPV6);
    CreateControl(L"STATIC", IDS_FILTER, SS_CENTERIMAGE, IDC_FILTER_LABEL);
    CreateControl(L"EDIT", 0, ES_AUTOHSCROLL | WS_TABSTOP, IDC_FILTER, WS_EX_CLIENTEDGE);
    CreateControl(L"STATIC", IDS_DEVICES, SS_NOPREFIX, IDC_DEVICES_LABEL);
    devices_.Create(window_);
    CreateControl(L"STATIC", IDS_DETAILS, SS_NOPREFIX, IDC_DETAILS_LABEL);
    details_.Create(window_);
    CreateControl(STATUSCLASSNAMEW, IDS_READY, SBARS_SIZEGRIP, IDC_STATUS);
}

void MainWindow::SetFonts() {
    OwnedFont font = MakeMessageFont(dpi_);
    devices_.SetDpi(dpi_);
    for (HWND child = GetWindow(window_, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), TRUE);
    font_ = std::move(font);
}

void MainWindow::RestoreSettings() {
    DeviceColumns::SetDefaults(settings_);
    settings_.ticks = kDefaultTicks;
    // A script gets the same sweep whatever settings a user has saved.
    if (!options_.exit) settings_ = LoadSettings().value_or(settings_);
    for (size_t index = 0; index < std::size(kTicks); ++index)
        CheckDlgButton(window_, kTicks[index], settings_.ticks >> index & 1);
    SendDlgItemMessageW(window_, IDC_PRESET, CB_SETCURSEL, settings_.preset, 0);
    ShowColumns();
}

void MainWindow::StoreSettings() {
    if (options_.exit) return;
    settings_.ticks = 0;
    for (size_t index = 0; index < std::size(kTicks); ++index)
        settings_.ticks |= static_cast<uint32_t>(IsTicked(kTicks[index])) << index;
    settings_.preset =
        static_cast<uint32_t>(SendDlgItemMessageW(window_, IDC_PRESET, CB_GETCURSEL, 0, 0));
    devices_.StoreColumns(settings_);
    KeepSettings(settings_);
}

int MainWindow::WidthOf(int id) const {
    const auto scaled = [&](int pixels) { return MulDiv(pixels, dpi_, 96); };
    if (id == IDC_FILTER) return scaled(150);
    std::wstring text = WindowText(GetDlgItem(window_, id));
    if (id == IDC_PRESET) text = Text(IDS_PRESET_KNOWN);
    if (id == IDC_FIND) text = Text(IDS_STOPPING);  // the longest, so that the others never move
    const WindowDc dc(window_);
    const Selection writing(dc.Get(), font_.Get());
    RECT size = {};
    DrawTextW(dc.Get(), text.c_str(), -1, &size, DT_CALCRECT | DT_SINGLELINE);
    if (id == IDC_FIND) return size.right + scaled(36);
    if (id == IDC_PRESET) return size.right + scaled(44);
    return size.right + (id == IDC_PRESET_LABEL || id == IDC_FILTER_LABEL ? 2 : scaled(26));
}

void MainWindow::Place() {
    RECT client = {}, status = {};
    GetClientRect(window_, &client);
    const HWND statusBar = GetDlgItem(window_, IDC_STATUS);
    SendMessageW(statusBar, WM_SIZE, 0, 0);
    GetWindowRect(statusBar, &status);
    LayoutInput input;
    input.width = client.right;
    input.height = client.bottom;
    input.statusHeight = status.bottom - status.top;
    input.dpi = dpi_;
    LOGFONTW font = {};
    GetObjectW(font_.Get(), sizeof font, &font);
    input.textHeight = MulDiv(std::abs(font.lfHeight), 4, 3);
    for (const int id : kBar) {
        input.barWidths.push_back(WidthOf(id));
        input.startsGroup.push_back(
            std::count(std::begin(kGroupStarts), std::end(kGroupStarts), id) != 0);
    }
    const Layout layout = Arrange(input);
    const auto move = [&](int id, const Box& box, int height) {
        MoveWindow(GetDlgItem(window_, id), box.x, box.y, box.width, height, TRUE);
    };
    for (size_t index = 0; index < layout.bar.size(); ++index) {
        const Box& box = layout.bar[index];
        // The height of a combo box includes its open list.
        move(kBar[index], box, kBar[index] == IDC_PRESET ? box.height * 6 : box.height);
        if (kBar[index] == IDC_FILTER) {  // whose text is at the top
            const int height = std::min(box.height, input.textHeight + MulDiv(8, dpi_, 96));
            move(IDC_FILTER, {box.x, box.y + (box.height - height) / 2, box.width, 0}, height);
        }
        if (kBar[index] != IDC_PRESET) continue;
        RECT closed = {};
        const HWND preset = GetDlgItem(window_, IDC_PRESET);
        GetWindowRect(preset, &closed);
        const int space = box.height - (closed.bottom - closed.top);
        SetWindowPos(preset, nullptr, box.x, box.y + std::max(0, space / 2), 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER);
    }
    move(IDC_DEVICES_LABEL, layout.devicesLabel, layout.devicesLabel.height);
    move(IDC_DEVICES, layout.devices, layout.devices.height);
    move(IDC_DETAILS_LABEL, layout.detailsLabel, layout.detailsLabel.height);
    const Box& details = layout.details;
    details_.Resize({details.x, details.y, details.x + details.width, details.y + details.height},
                    dpi_);
}

bool MainWindow::IsTicked(int id) const { return IsDlgButtonChecked(window_, id) == BST_CHECKED; }

void MainWindow::OnCommand(int id, int code) {
    const bool isFromControl = id < IDM_OPEN;
    if (id == IDC_FILTER && code == EN_CHANGE) {
        session_.view.Filter(ToUtf8(WindowText(GetDlgItem(window_, IDC_FILTER))));
        ShowRows();
    }
    if (isFromControl && id != IDC_FIND && id != IDCANCEL) return;
    note_.clear();
    shownNote_.clear();
    const DeviceRow* row = session_.view.SelectedRow();
    for (const FileCommand& command : kFileCommands) {
        if (id == command.id && (id != IDM_OPEN || MayReplaceScan())) WithPath(command);
    }
    switch (id) {
        case IDC_FIND:
            StartOrStop();
            break;
        case IDCANCEL:  // Esc
            if (isSweeping_ || !asked_.empty()) Stop();
            break;
        case IDM_EXIT:
            PostMessageW(window_, WM_CLOSE, 0, 0);
            break;
        case IDM_COPY_CELL:
            CopyCell(devices_.ChosenColumn());
            break;
        case IDM_COPY_ROW:
            devices_.List().Copy(id);
            break;
        case IDM_COPY_TABLE:
            CopyText(window_, devices_.List().TableText(true));
            break;
        case IDM_FILTER:
            SetFocus(GetDlgItem(window_, IDC_FILTER));
            break;
        case IDM_CLEAR:
            if (!MayReplaceScan()) break;
            session_.Clear();
            wasSwept_ = false;
            session_.Refresh();
            ShowRows();
            break;
        case IDM_ASK:
            AskSelected(true);
            break;
        case IDM_ASK_ALL:
            AskAll();
            break;
        case IDM_WALK:
            OpenWalk();
            break;
        case IDM_SPLIT:
            if (row && session_.Split(*row) && session_.Refresh()) ShowRows();
            break;
        case IDM_WEB:
            OpenWebPage();
            break;
        case IDM_SNMP:
            AskCredentials(window_, credentials_);
            break;
        case IDM_DIAGNOSE:
            Diagnose();
            break;
        case IDM_DOCTOR:
            doctor_.Begin("");
            workers_->MakeReport();
            note_ = Text(IDS_DOCTOR_WAIT);
            break;
        case IDM_NEXT_PAGE:
        case IDM_PREVIOUS_PAGE:
            details_.Turn(id == IDM_NEXT_PAGE ? 1 : -1);
            break;
        case IDM_CALLS:
            calls_.Open(window_);
            break;
        default:
            if (id >= IDM_COLUMN && id < IDM_COLUMN + static_cast<int>(kColumnCount))
                ToggleColumn(static_cast<unsigned>(id - IDM_COLUMN));
            if (id >= IDM_CELL && id < IDM_CELL + static_cast<int>(kColumnCount))
                CopyCell(static_cast<Column>(id - IDM_CELL));
            break;
    }
    ShowStatus();
}

DeviceList::Actions MainWindow::DeviceActions() {
    DeviceList::Actions actions;
    actions.onSelected = [this] {
        details_.Show();
        AskSelected(false);
    };
    actions.emptyText = [this]() -> unsigned {
        if (session_.view.Total() != 0) return IDS_ALL_HIDDEN;
        return wasSwept_ && !isSweeping_ ? IDS_NONE_FOUND : IDS_EMPTY;
    };
    return actions;
}

// Updates list and details from the session.
void MainWindow::ShowRows() {
    devices_.Show();
    const DeviceView& view = session_.view;
    const std::wstring count = std::to_wstring(view.Count());
    const std::wstring title = view.Count() == view.Total()
                                   ? Text(IDS_SHOWN, {count})
                                   : Text(IDS_SHOWN_OF, {count, std::to_wstring(view.Total())});
    ChangeText(GetDlgItem(window_, IDC_DEVICES_LABEL), title);
    details_.Show();
}

// Gets the SNMPv3 user. False if there is none and the user cannot be asked.
bool MainWindow::FetchUser() {
    if (UseProfile(options_.profile.empty() ? LastProfile() : options_.profile, credentials_))
        return true;
    if (options_.exit) {
        exitCode_ = kFailed;
        Complain(Text(IDS_NO_PROFILE, {options_.profile}));
        PostMessageW(window_, WM_CLOSE, 0, 0);
        return false;
    }
    AskCredentials(window_, credentials_);
    // Cancelling the dialog switches off SNMPv3.
    if (!credentials_.security) CheckDlgButton(window_, IDC_V3, BST_UNCHECKED);
    return true;
}

std::vector<SweepStep> MainWindow::ChosenSteps() const {
    std::vector<SweepStep> steps;
    const LRESULT preset = SendDlgItemMessageW(window_, IDC_PRESET, CB_GETCURSEL, 0, 0);
    SweepStep step;
    step.credentials = credentials_;
    step.oid = *ParseOidOrName(kPresets[std::max<LRESULT>(0, preset)]);
    for (const auto& [kind, tick] :
         {std::pair(SweepKind::kSnmpV1, IDC_V1), std::pair(SweepKind::kSnmpV3, IDC_V3)}) {
        for (const bool useIPv6 : {false, true}) {
            if (!IsTicked(useIPv6 ? IDC_IPV6 : IDC_IPV4) || !IsTicked(tick)) continue;
            step.kind = kind;
            step.useIPv6 = useIPv6;
            steps.push_back(step);
        }
    }
    step = {};
    step.kind = SweepKind::kWsd;
    if (IsTicked(IDC_WSD) && IsTicked(IDC_IPV4)) steps.push_back(step);
    return steps;
}

// Sweeps and requests.
void MainWindow::Stop() {
    workers_->Stop();
    doctor_.Stop(window_);
    if (!isSweeping_) return;
    isStopping_ = isStopped_ = true;
    SetDlgItemTextW(window_, IDC_FIND, Text(IDS_STOPPING).c_str());
}

void MainWindow::StartOrStop() {
    note_.clear();
    if (isSweeping_) {
        Stop();
        ShowStatus();
        return;
    }
    if (IsTicked(IDC_V3) && !credentials_.security && !FetchUser()) return;
    const std::vector<SweepStep> steps = ChosenSteps();
    if (steps.empty()) {
        note_ = Text(IDS_NOTHING_CHOSEN);
        ShowStatus();
        return;
    }
    workers_->LookAtAdapters();  // again, since the user may have plugged one in
    startMs_ = GetTickCount64();
    answers_ = 0;
    isSweeping_ = wasSwept_ = true;
    isStopping_ = isStopped_ = false;
    sweepsLeft_ = steps.size();
    workers_->Sweep(steps);
    SetDlgItemTextW(window_, IDC_FIND, Text(IDS_STOP).c_str());
    SetTimer(window_, kStatusTimer, kStatusMs, nullptr);
    ShowStatus();
}

void MainWindow::AskSelected(bool isAgain) {
    const DeviceRow* row = session_.view.SelectedRow();
    if (!row || (!isAgain && session_.WasAsked(*row))) return;
    auto target = session_.TargetOf(*row);
    if (!target || (isReading_ && target->address == asked_)) return;
    // Credentials go to an address of a file only if the user says so.
    if (!isAgain && !session_.HasAnsweredHere(*row, target->address)) return;
    target->credentials = credentials_;
    if (isAgain && credentials_.security && target->kind == SweepKind::kSnmpV1) {
        // To a sweep, a device that refuses the user is silent.
        AskTarget second = *target;
        second.kind = SweepKind::kSnmpV3;
        workers_->Ask(second, true);
    }
    workers_->Ask(*target, true);
}

WalkWindow::Actions MainWindow::WalkActions() {
    WalkWindow::Actions actions;
    actions.start = [this](const AskTarget& target, const Oid& root, unsigned walk) {
        workers_->Walk(target, root, walk);
        SetTimer(window_, kStatusTimer, kStatusMs, nullptr);
    };
    actions.stop = [this] {
        if (workers_) workers_->StopWalk();
    };
    return actions;
}

void MainWindow::OpenWalk() {
    const DeviceRow* row = session_.view.SelectedRow();
    auto target = row ? session_.TargetOf(*row) : std::nullopt;
    if (!target) {
        note_ = Text(IDS_NO_SELECTION);
        return;
    }
    target->credentials = credentials_;
    walk_.Open(window_, *std::move(target));
}

void MainWindow::AskAll() {
    for (size_t index = 0; index < session_.view.Count(); ++index) {
        const DeviceRow& row = session_.view.Row(index);
        auto target = session_.TargetOf(row);
        if (!target || session_.WasAsked(row)) continue;
        target->credentials = credentials_;
        workers_->Ask(*target, false);
    }
}

void MainWindow::Diagnose() {
    const DeviceRow* row = session_.view.SelectedRow();
    auto target = row ? session_.TargetOf(*row) : std::nullopt;
    if (!target) return;
    target->credentials = credentials_;
    doctor_.Begin(target->address);
    workers_->Diagnose(*target);
    workers_->MakeReport();
}

void MainWindow::OnFrame() {
    KillTimer(window_, kFrameTimer);
    bool isOver = false;
    for (const Event& event : events_.Drain()) {
        session_.Take(event);
        if (event.kind == Event::kAnswer) ++answers_;
        if (event.kind == Event::kAskBegan || event.kind == Event::kDiagnosisBegan) {
            isReading_ = event.kind == Event::kAskBegan;
            asked_ = event.address;
            askStartMs_ = GetTickCount64();
            SetTimer(window_, kStatusTimer, kStatusMs, nullptr);
        }
        if (event.kind == Event::kAsked || event.kind == Event::kDiagnosed) asked_.clear();
        if (event.kind == Event::kWalkBegan) {
            walked_ = event.address;
            walkStartMs_ = GetTickCount64();
            walkValues_ = 0;
        }
        if (event.kind == Event::kWalkStep) ++walkValues_;
        // One that was dropped before it began has no address.
        if (event.kind == Event::kWalked && !event.address.empty()) walked_.clear();
        walk_.Take(event);
        if (event.kind == Event::kAdapters) sweptAddresses_ = event.adapters.addresses.size();
        if (event.kind == Event::kCalled) calls_.Add(event.call);
        if (event.kind == Event::kReport) note_.clear();
        doctor_.Take(event, window_);
        if (event.kind != Event::kSweepEnded) continue;
        isOver = --sweepsLeft_ == 0;
        if (!event.problem.empty()) sweepProblem_ = Text(IDS_SWEEP_FAILED, {ToWide(event.problem)});
    }
    if (session_.Refresh()) ShowRows();
    calls_.Refresh();
    walk_.Refresh();
    if (isOver) OnSwept();
    if (!workers_->IsBusy()) KillTimer(window_, kStatusTimer);
    ShowStatus();
}

void MainWindow::OnSwept() {
    const bool wasStart = options_.sweep;
    isSweeping_ = isStopping_ = false;
    endMs_ = GetTickCount64();
    SetDlgItemTextW(window_, IDC_FIND, Text(IDS_FIND).c_str());
    InvalidateRect(devices_.Handle(), nullptr, TRUE);
    details_.Show();  // protocols are no longer pending
    EndStartSweep();
    if (!sweepProblem_.empty()) Complain(std::exchange(sweepProblem_, L""));
    if (wasStart && options_.exit) PostMessageW(window_, WM_CLOSE, 0, 0);
}

// Saves what the sweep of the command line has found.
void MainWindow::EndStartSweep() {
    if (!std::exchange(options_.sweep, false)) return;
    exitCode_ = answers_ != 0 ? kFound : kNone;
    if (!options_.savePath.empty() && !SaveTo(options_.savePath)) exitCode_ = kNone;
    if (!sweepProblem_.empty()) exitCode_ = kFailed;
}

// With the answers until now.
void MainWindow::EndEarly() {
    for (const Event& event : events_.Drain()) {
        session_.Take(event);
        answers_ += event.kind == Event::kAnswer;
    }
    if (isSweeping_) EndStartSweep();
}

std::wstring MainWindow::StatusText() const {
    const auto seconds = [](ULONGLONG ms) { return std::to_wstring(ms / 1000); };
    const ULONGLONG now = GetTickCount64();
    const std::wstring answers = std::to_wstring(answers_);
    if (!note_.empty() && now - noteMs_ < kNoteMs) return note_;
    if (isSweeping_)
        return Text(IDS_SWEEPING,
                    {seconds(now - startMs_), answers, std::to_wstring(sweptAddresses_)});
    if (!asked_.empty()) {
        const std::wstring asking = Text(IDS_ASKING, {ToWide(asked_), seconds(now - askStartMs_)});
        const size_t waiting = workers_ ? workers_->Waiting() : 0;
        return waiting == 0 ? asking : Text(IDS_ASKING_MORE, {asking, std::to_wstring(waiting)});
    }
    if (!walked_.empty())
        return Text(IDS_WALK_STATUS,
                    {ToWide(walked_), seconds(now - walkStartMs_), std::to_wstring(walkValues_)});
    if (!note_.empty()) return note_;
    if (!wasSwept_) return Text(IDS_READY);
    return Text(isStopped_ ? IDS_STOPPED : IDS_DONE, {seconds(endMs_ - startMs_), answers});
}

void MainWindow::ShowStatus() {
    if (std::exchange(shownNote_, note_) != note_) noteMs_ = GetTickCount64();
    const std::wstring text = StatusText();
    ChangeText(GetDlgItem(window_, IDC_STATUS), text);
}

// Returns false.
bool MainWindow::Complain(const std::wstring& text) {
    note_ = text;
    ShowProblem(window_, text, options_.exit);
    return false;
}

// False if it must stay: the user was told why, or wants it.
bool MainWindow::MayReplaceScan() {
    OnFrame();  // what the workers have told until now
    const bool isFilled = isSweeping_ || !asked_.empty() || workers_->Waiting() != 0;
    if (isFilled) ShowProblem(window_, Text(IDS_AWAITS_ANSWERS), false);
    return !isFilled && MayDropScan();
}

bool MainWindow::MayDropScan() {
    if (options_.exit || !session_.IsUnsaved()) return true;
    const int answer = AskToSave(window_);
    if (answer == IDYES) WithPath(kFileCommands[1]);
    return answer == IDNO || !session_.IsUnsaved();
}

// Not while a dialog is open, whose caller would go on without the window.
bool MainWindow::MayClose() { return IsWindowEnabled(window_) && (WillSave() || MayDropScan()); }

// Whether the running sweep is that of the command line, whose answers are saved.
bool MainWindow::WillSave() const {
    return isSweeping_ && options_.sweep && !options_.savePath.empty();
}

bool MainWindow::OpenFrom(const std::string& path) {
    std::wstring problem;
    auto scan = LoadScan(path, problem);
    if (!scan) return Complain(problem);
    session_.SetScan(std::move(*scan));
    session_.Refresh();
    ShowRows();
    return true;
}

bool MainWindow::CompareWith(const std::string& path) {
    std::wstring problem;
    const auto scan = LoadScan(path, problem);
    if (!scan) return Complain(problem);
    ShowPage(Text(IDS_COMPARE_TITLE, {ToWide(path)}),
             RowsOf(ReportOf(CompareDevices(MakeDevices(*scan), session_.Devices()))));
    return true;
}

bool MainWindow::SaveTo(const std::string& path) {
    if (!SaveScan(session_.GetScan(), path, note_)) return Complain(note_);
    session_.SetSaved();
    return true;
}

bool MainWindow::SaveCsvTo(const std::string& path) {
    return SaveText(CsvOf(session_.view, devices_.Columns().Headings()), path, note_) ||
           Complain(note_);
}

bool MainWindow::SaveJsonTo(const std::string& path) {
    return SaveText(JsonOf(session_.view, session_.GetScan()), path, note_) || Complain(note_);
}

// With a path that the user chooses.
void MainWindow::WithPath(const FileCommand& command) {
    const std::string path = AskPath(window_, command.kind, command.extension, command.isForSaving);
    if (!path.empty()) (this->*command.method)(path);
}

void MainWindow::CopyCell(Column column) {
    const DeviceRow* row = session_.view.SelectedRow();
    if (!row) return;
    const std::wstring text = devices_.TextOf(*row, column);
    if (CopyText(window_, text)) note_ = Text(IDS_COPIED, {text});
}

void MainWindow::ToggleColumn(unsigned column) {
    devices_.StoreColumns(settings_);
    const uint32_t hidden = settings_.hidden ^ 1u << column;
    if (hidden == kAllColumns) return;  // one must stay
    settings_.hidden = hidden;
    ShowColumns();
    ShowRows();
}

void MainWindow::ShowColumns() {
    session_.view.Hide(settings_.hidden);
    devices_.ShowColumns(settings_);
    for (unsigned index = 0; index < kColumnCount; ++index) {
        const bool isShown = devices_.Columns().IsShown(static_cast<Column>(index));
        CheckMenuItem(GetMenu(window_), IDM_COLUMN + index, isShown ? MF_CHECKED : MF_UNCHECKED);
    }
}

// Built only from the numeric address: nothing that a device sends becomes a URL.
void MainWindow::OpenWebPage() {
    const DeviceRow* row = session_.view.SelectedRow();
    if (!row) return;
    // The first of its IPv4 addresses; what is not a numeric one is never opened.
    for (const size_t index : row->answers) {
        const std::string& address = session_.GetScan().answers[index].address;
        const auto known = ParseIpAddress(address);
        if (!known || !known->IsIPv4()) continue;
        ShellExecuteW(window_, L"open", ToWide("http://" + address + "/").c_str(), nullptr, nullptr,
                      SW_SHOWNORMAL);
        return;
    }
}

void MainWindow::ShowPage(const std::wstring& title, std::vector<ReportRow> rows) {
    OpenPage(window_, title, std::move(rows));
}

}  // namespace vndiscover::host
