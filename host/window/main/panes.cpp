#include "window/main/panes.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "model/scan/device_view.h"
#include "platform/wide_text.h"
#include "values/ranges.h"
#include "values/utc_time.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

// Creates the controls in tab order.
void Panes::Create() {
    const HWND window = state_.window;
    bar.Create(window);
    CreateControl(window, L"STATIC", IDS_DEVICES, SS_NOPREFIX | SS_ENDELLIPSIS, IDC_DEVICES_LABEL);
    list.Create(window, IDC_DEVICES, Text(IDS_DEVICES), true);
    CreateControl(window, L"STATIC", IDS_DETAILS, SS_NOPREFIX | SS_ENDELLIPSIS, IDC_DETAILS_LABEL);
    details.Create(window);
    const HWND status =
        CreateControl(window, STATUSCLASSNAMEW, IDS_READY, SBARS_SIZEGRIP, IDC_STATUS);
    ShowWindow(CreateControl(status, PROGRESS_CLASSW, IDS_READ_BAR, 0, IDC_READ_BAR), SW_HIDE);
    tip_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX, 0, 0,
                           0, 0, window, nullptr, GetModuleHandleW(nullptr), nullptr);
    TTTOOLINFOW tool = StatusTool();
    SendMessageW(tip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

TTTOOLINFOW Panes::StatusTool() const {
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = state_.window;
    tool.uId = reinterpret_cast<UINT_PTR>(Control(IDC_STATUS));
    return tool;
}

// Only status bars of several parts have tooltips of their own. This one has a text only while that
// of the bar is cut.
void Panes::ShowStatusTip() const {
    const HWND status = Control(IDC_STATUS);
    std::wstring text = WindowText(status);
    LONG room = ClientSize(status).cx - Scaled(20, dpi_);
    const HWND reading = GetDlgItem(status, IDC_READ_BAR);  // covers the end of the text
    if (IsWindowVisible(reading)) room -= BoxOf(reading).width;
    if (TextSize(status, text, DT_SINGLELINE | DT_NOPREFIX).cx <= room) text.clear();
    TTTOOLINFOW tool = StatusTool();
    tool.lpszText = text.data();
    SendMessageW(tip_, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageW(tip_, TTM_SETMAXTIPWIDTH, 0, Scaled(500, dpi_));
}

void Panes::RestoreSettings() {
    Settings& settings = state_.settings;
    DeviceList::SetDefaults(settings);
    // A script does not use the settings that a user has saved.
    if (state_.options.exit) DeviceList::SetForScripts(settings);
    if (!state_.options.exit) settings = LoadSettings(settings).value_or(settings);
    bar.Restore(settings);
    split_ = settings.splitPercent * 10;
    state_.session.SetLimits({settings.lowPercent});
    list.ShowColumns();
}

void Panes::SaveSettings() {
    if (state_.options.exit) return;
    Settings& settings = state_.settings;
    WINDOWPLACEMENT place = {};
    place.length = sizeof place;
    GetWindowPlacement(state_.window, &place);
    settings.place = place.rcNormalPosition;
    settings.isMaximized = place.showCmd == SW_SHOWMAXIMIZED;
    settings.splitPercent = split_ / 10;
    bar.Save(settings);
    list.SaveColumns();
    host::SaveSettings(settings);
}

void Panes::PlaceWindow() const {
    const HWND window = state_.window;
    WINDOWPLACEMENT saved = {};
    saved.length = sizeof saved;
    saved.rcNormalPosition = state_.settings.place;
    saved.showCmd = SW_HIDE;
    const bool isSaved = !IsRectEmpty(&saved.rcNormalPosition);
    if (isSaved) SetWindowPlacement(window, &saved);
    Box place = BoxOf(window);
    if (!isSaved) {
        place.width = Scaled(1100, dpi_);
        place.height = Scaled(620, dpi_);
    }
    place = FitInto(WorkAreaOf(window), place);  // the monitor of a saved place may be gone
    SetWindowPos(window, nullptr, place.x, place.y, place.width, place.height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void Panes::SetDpi(int dpi) {
    dpi_ = dpi;
    list.SetDpi(dpi);
    OwnedFont font = MakeMessageFont(dpi);
    for (HWND child = GetWindow(state_.window, GW_CHILD); child;
         child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), TRUE);
    font_ = std::move(font);
}

int Panes::StatusHeight() const { return ClientSize(Control(IDC_STATUS)).cy; }

int Panes::Margin() const { return Scaled(8, dpi_); }

int Panes::ListTop(int labelTop) const {
    return labelTop + LineHeight(font_.Get()) + Scaled(4, dpi_);
}

void Panes::Place() {
    const SIZE client = ClientSize(state_.window);
    PlaceStatus();
    const int inner = std::max<int>(0, client.cx - 2 * Margin());
    minWidth_ = std::min(Scaled(280, dpi_), inner / 2);
    const int detailsWidth =
        std::clamp(inner * (1000 - split_) / 1000, minWidth_, inner - minWidth_);
    const int bottom = client.cy - StatusHeight() - Scaled(6, dpi_);
    {
        Placement placement(state_.window);
        const int top = bar.Place(&placement, font_.Get(), client.cx, dpi_);
        const int listTop = ListTop(top), height = std::max(0, bottom - listTop);
        list_ = {Margin(), listTop, std::max(0, inner - detailsWidth - Margin()), height};
        details_ = {list_.x + list_.width + Margin(), listTop, detailsWidth, height};
        const int text = LineHeight(font_.Get());
        placement.Move(Control(IDC_DEVICES_LABEL), {list_.x, top, list_.width, text});
        placement.Move(list.Handle(), list_);
        placement.Move(Control(IDC_DETAILS_LABEL), {details_.x, top, detailsWidth, text});
        details.Place(placement, details_, dpi_);
    }
    list.Fit();
    details.OnPlaced();
}

// Moves it to the lower edge of the window.
void Panes::PlaceStatus() const {
    const HWND status = Control(IDC_STATUS);
    SendMessageW(status, WM_SIZE, 0, 0);
    const Box whole = BoxOf(status);
    const int part = std::min(Scaled(160, dpi_), whole.width / 4);
    SetWindowPos(GetDlgItem(status, IDC_READ_BAR), nullptr, whole.width - part - Scaled(20, dpi_),
                 Scaled(4, dpi_), part, whole.height - Scaled(7, dpi_),
                 SWP_NOZORDER | SWP_NOACTIVATE);
    ShowStatusTip();
}

SIZE Panes::MinimumSize() const {
    if (IsIconic(state_.window)) return {};  // its frame has another size
    const Box window = BoxOf(state_.window);
    const SIZE client = ClientSize(state_.window);
    const int width = Scaled(520, dpi_);
    const int listTop = ListTop(bar.Place(nullptr, font_.Get(), width, dpi_));
    const int height = listTop + Scaled(140, dpi_) + Scaled(6, dpi_) + StatusHeight();
    return {width + window.width - client.cx, height + window.height - client.cy};
}

bool Panes::OnMouse(UINT message) {
    POINT at = {};
    GetCursorPos(&at);
    ScreenToClient(state_.window, &at);
    const int left = list_.x + list_.width;
    const RECT gap = {left, list_.y, details_.x, list_.y + list_.height};
    const bool isDragging = GetCapture() == state_.window;
    if (!isDragging && (message == WM_MOUSEMOVE || !PtInRect(&gap, at))) return false;
    if (message == WM_SETCURSOR)
        SetCursor(LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_SIZEWE)));
    if (message == WM_LBUTTONDOWN) SetCapture(state_.window);
    if (message == WM_MOUSEMOVE) Widen(at.x - left - Margin() / 2);
    if (message == WM_LBUTTONUP) ReleaseCapture();
    return true;
}

void Panes::Widen(int pixels) {
    const int whole = details_.x + details_.width - list_.x;
    const int wanted = list_.width + Margin() + pixels;
    split_ = std::clamp(wanted * 1000 / std::max(1, whole), kMinSplit, kMaxSplit);
    Place();
}

void Panes::FocusNextPane() const {
    SetFocus(GetFocus() == list.Handle() ? details.List() : list.Handle());
}

void Panes::ToggleColumn(Column column) {
    list.SaveColumns();
    state_.settings.hidden ^= 1u << static_cast<unsigned>(column);
    list.ShowColumns();
    ShowRows();
}

void Panes::UseLow() {
    state_.session.SetLimits({state_.settings.lowPercent});
    state_.session.Refresh();
    ShowRows();
    state_.changes.RecordStates(state_.session.view.AllRows());
}

void Panes::ShowRows() {
    list.Show();
    ShowDetails();
}

void Panes::ShowListTitle() const {
    const DeviceView& view = state_.session.view;
    const std::wstring count = Grouped(view.Count());
    std::wstring title = view.Count() == view.Total()
                             ? Text(IDS_SHOWN, {count})
                             : Text(IDS_SHOWN_OF, {count, Grouped(view.Total())});
    const size_t changed = CountIf(view.AllRows(), [&](const DeviceRow& row) {
        return !view.IsOther(row) && state_.changes.IsMarked(row);
    });
    if (changed != 0) title = Text(IDS_SHOWN_CHANGED, {title, L"\x25CF " + Grouped(changed)});
    if (view.Others() != 0) title = Text(IDS_SHOWN_OTHERS, {title, Grouped(view.Others())});
    ChangeText(Control(IDC_DEVICES_LABEL), title);
}

void Panes::ShowDetails() {
    ShowListTitle();
    ShowDetailsTitle();
    details.Show();
}

void Panes::ShowDetailsTitle() const {
    const DeviceRow* row = state_.session.view.SelectedRow();
    const size_t selected = state_.session.view.Selection().size();
    std::wstring title = Text(IDS_DETAILS);
    for (const Column column : {Column::kName, Column::kModel, Column::kAddress}) {
        if (!row || row->Text(column).empty()) continue;
        const std::wstring name = ToWide(row->Text(column));
        title = selected > 1 ? Text(IDS_DETAILS_SELECTED, {Grouped(selected), name})
                             : Text(IDS_DETAILS_OF, {name});
        break;
    }
    if (row && !row->facts->readTime.empty())
        title = Text(IDS_DETAILS_AS_OF, {title, ToWide(ShortTime(row->facts->readTime))});
    ChangeText(Control(IDC_DETAILS_LABEL), title);
}

// No screen reader reads the text that an empty list shows, so the status repeats it.
std::wstring Panes::EmptyNote(Progress::Kind kind) const {
    const bool isOver = kind == Progress::Kind::kDone || kind == Progress::Kind::kStopped ||
                        kind == Progress::Kind::kRead ||
                        (kind == Progress::Kind::kReady && !state_.file.empty());
    const std::wstring text = isOver ? list.ListControl::EmptyText() : L"";
    return text.empty() ? L"" : L". " + text;
}

void Panes::ShowStatus() const {
    const Progress::Status status =
        state_.progress.Now(state_.workers ? state_.workers->Now() : Progress::Work());
    const std::wstring text = TextOf(status) + EmptyNote(status.kind);
    const bool isOther = WindowText(Control(IDC_STATUS)) != text;
    ChangeText(Control(IDC_STATUS), text);
    const unsigned find = !state_.IsBusy()               ? IDS_FIND
                          : state_.progress.IsStopping() ? IDS_STOPPING
                                                         : IDS_STOP;
    ChangeText(Control(IDC_FIND), Text(find));
    if (find == IDS_STOPPING && GetFocus() == Control(IDC_FIND)) SetFocus(list.Handle());
    EnableWindow(Control(IDC_FIND), find != IDS_STOPPING);
    const HWND reading = GetDlgItem(Control(IDC_STATUS), IDC_READ_BAR);
    const bool isReading = status.kind == Progress::Kind::kReadingAll;
    if (isReading) {
        SendMessageW(reading, PBM_SETRANGE32, 0, static_cast<LPARAM>(status.read.total));
        SendMessageW(reading, PBM_SETPOS, status.read.done, 0);
    }
    const bool wasReading = ShowWindow(reading, isReading ? SW_SHOWNA : SW_HIDE) != FALSE;
    if (isOther || wasReading != isReading) ShowStatusTip();
}

std::wstring Panes::TextOf(const Progress::Status& status) const {
    const std::wstring seconds = Grouped(static_cast<uint64_t>(status.seconds));
    const std::wstring count = Grouped(status.count);
    const std::wstring found = Grouped(state_.session.CountFound());
    const std::wstring address = ToWide(status.address);
    const std::wstring wait = Text(IDS_WAITING, {address, std::to_wstring(status.waitSeconds)});
    switch (status.kind) {
        case Progress::Kind::kReady:
            return state_.file.empty() ? Text(IDS_READY) : state_.file;
        case Progress::Kind::kSearching:
            return Text(status.count == 0 ? IDS_SWEEPING_YET : IDS_SWEEPING,
                        {seconds, found, count});
        case Progress::Kind::kReadingAll: {
            const std::wstring reading =
                Text(status.read.isOfStates ? IDS_READING_STATES : IDS_READING,
                     {Grouped(status.read.done), Grouped(status.read.total)});
            return address.empty() ? reading : reading + L", " + wait;
        }
        case Progress::Kind::kAsking: {
            const bool isLong = status.waitSeconds * 1000 >= Progress::kWaitMs;
            const std::wstring asking = isLong ? wait : Text(IDS_ASKING, {address, seconds});
            return status.count == 0 ? asking : Text(IDS_ASKING_MORE, {asking, count});
        }
        case Progress::Kind::kWalking:
            return Text(IDS_WALK_STATUS, {address, seconds, count});
        case Progress::Kind::kStopping:
            return Text(IDS_STOPPING_UP_TO, {seconds});
        case Progress::Kind::kDone:
            return Text(IDS_DONE, {seconds, found});
        case Progress::Kind::kStopped:
            return Text(IDS_STOPPED, {seconds, found});
        case Progress::Kind::kRead:
            return ReadText(status);
        case Progress::Kind::kNote:
            return state_.progress.Note();
    }
    return L"";
}

// Counts devices that did not answer the search, too.
std::wstring Panes::ReadText(const Progress::Status& status) const {
    const DeviceView& view = state_.session.view;
    const Progress::Read& read = status.read;
    size_t missed = 0, present = 0, others = 0;
    for (const DeviceRow& row : view.AllRows()) {
        const bool isMissed = row.standing.kind == Standing::Kind::kNotFound;
        missed += isMissed && !view.IsOther(row);
        present += !isMissed;
        others += !isMissed && view.IsOther(row);
    }
    // Only listed devices count. After a search all devices are read, so others are subtracted.
    const size_t left = std::min(read.total == present ? others : 0, read.done - read.unread);
    const auto seconds = static_cast<uint64_t>(status.seconds);
    const unsigned stopped = read.isOfStates ? IDS_STATES_STOPPED : IDS_READ_STOPPED;
    return Text(read.done < read.total ? stopped
                : read.unread > 0      ? IDS_READ_SOME
                                       : IDS_READ,
                {Grouped(read.done - read.unread - left), Grouped(read.total - left),
                 seconds == 0 ? Text(IDS_UNDER_ONE) : Grouped(seconds), Grouped(read.unread)}) +
           (missed == 0 ? L"" : Text(IDS_READ_MISSED, {Grouped(missed)})) +
           (state_.refusal.empty() ? L"" : L". " + state_.refusal);
}

}  // namespace vndiscover::host
