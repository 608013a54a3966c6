#include "window/main/scan_commands.h"

#include <algorithm>
#include <cwchar>
#include <optional>
#include <utility>

#include "model/scan/device_view.h"
#include "model/scan/device_writer.h"
#include "model/scan/scan_file.h"
#include "model/scan/scan_report.h"
#include "model/scan/standing.h"
#include "platform/saved_file.h"
#include "platform/wide_text.h"
#include "values/ranges.h"
#include "values/utc_time.h"
#include "window/dialogs/dialogs.h"
#include "window/store/scan_files.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

// When the last search began or, without a search, when the last answer came.
std::string TimeOf(const Scan& scan) {
    std::string search, answer;
    for (const ScanSweep& sweep : scan.sweeps) {
        if (sweep.form != AnswerForm::kVariable && sweep.form != AnswerForm::kAdded)
            search = std::max(search, sweep.time);
    }
    for (const ScanAnswer& one : scan.answers) answer = std::max(answer, one.time);
    return search.empty() ? answer : search;
}

std::wstring FileName(const std::string& path) {
    return ToWide(path.substr(path.find_last_of("\\/") + 1));
}

// "printers 2026-11-23 0912"
std::wstring ProposedName() {
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    wchar_t name[40] = L"";
    swprintf(name, 40, L"printers %04u-%02u-%02u %02u%02u", now.wYear, now.wMonth, now.wDay,
             now.wHour, now.wMinute);
    return name;
}

// "monday.json, scan of 11/23/2026 9:12 AM"
std::wstring NameOf(const std::wstring& file, const Scan& scan) {
    // With the date: it may still be shown after midnight.
    std::wstring time = LocalTime(TimeOf(scan), TIME_NOSECONDS);
    std::replace(time.begin(), time.end(), L' ', L'\xA0');  // no line break within it
    return time.empty() ? file : Text(IDS_SCAN_OF, {file, time});
}

}  // namespace

void ScanCommands::WithPath(unsigned kind, const wchar_t* extension, bool isForSaving,
                            bool (ScanCommands::*method)(const std::string& path)) {
    const std::string path =
        AskPath(state_.window, kind, extension, isForSaving ? ProposedName() : L"", isForSaving);
    if (!path.empty()) (this->*method)(path);
}

void ScanCommands::Open() {
    if (MayReplace(IDS_ASK_SAVE_OPEN))
        WithPath(IDS_SCAN_FILES, L"json", false, &ScanCommands::OpenFrom);
}

void ScanCommands::Clear() {
    if (MayReplace(IDS_ASK_SAVE_CLEAR)) Empty();
}

void ScanCommands::Empty() {
    Replace({});
    SetFile(L"");
}

void ScanCommands::Replace(Scan scan) {
    DeleteRecoveryFile();
    state_.progress.ForgetSearch();
    ShowScan(std::move(scan));
}

void ScanCommands::ShowScan(Scan scan) {
    state_.session.SetScan(std::move(scan));
    state_.changes.ForgetStates();
    state_.refusal.clear();
    state_.session.Refresh();  // before showRows, which would record the file's states as changes
    state_.showRows();
}

void ScanCommands::SetFile(const std::wstring& file) {
    state_.file = file;
    const std::wstring title = Text(IDS_TITLE);
    ChangeText(state_.window, file.empty() ? title : file + L" - " + title);
}

void ScanCommands::AddToFile() {
    state_.session.AdoptAdded();
    SetFile(Text(IDS_SCAN_AND_MORE, {state_.file}));
    state_.file.clear();
}

void ScanCommands::ShowReadSince() {
    const std::wstring &file = state_.file, since = Text(IDS_SCAN_READ);
    const bool isNoted = file.size() >= since.size() &&
                         file.compare(file.size() - since.size(), since.size(), since) == 0;
    if (!file.empty() && !isNoted) SetFile(file + since);
}

bool ScanCommands::HasScan() const {
    return state_.progress.HasSearched() || !state_.session.GetScan().answers.empty();
}

// Reports a file that cannot be read, and returns nothing then.
std::optional<Scan> ScanCommands::Load(const std::string& path) {
    const HWND status = GetDlgItem(state_.window, IDC_STATUS);
    ChangeText(status, Text(IDS_OPENING, {FileName(path)}));
    UpdateWindow(status);  // a large file takes seconds
    SetCursor(LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_WAIT)));
    std::string reason;
    bool isBroken = false;
    auto scan = LoadScan(path, isBroken, reason);
    if (!scan)
        state_.ReportProblem(
            Text(isBroken ? IDS_BROKEN_SCAN : IDS_NOT_READ, {ToWide(reason), ToWide(path)}));
    return scan;
}

bool ScanCommands::OpenFrom(const std::string& path) {
    auto scan = Load(path);
    if (!scan) return false;
    Replace(*std::move(scan));
    SetFile(NameOf(FileName(path), state_.session.GetScan()));
    return true;
}

bool ScanCommands::CompareWith(const std::string& path) {
    const auto scan = Load(path);
    if (!scan) return false;
    std::vector<FoundDevice> before = PresentDevices(*scan),
                             after = state_.session.PresentDevices();
    const bool isOfPrinters = state_.session.view.ShowsOnlyPrinters();
    for (auto* devices : {&before, &after})
        EraseIf(*devices, [&](const FoundDevice& one) {
            return isOfPrinters && !one.facts->deviceIndex &&
                   (one.hasVariables || IsOtherByType(one));
        });
    Comparison changes = CompareDevices(std::move(before), std::move(after));
    changes.beforeName = ToUtf8(Text(IDS_THE_FILE, {FileName(path)}));
    changes.afterName = ToUtf8(Text(IDS_THIS_LIST));
    std::vector<ListRow> rows;
    for (const ChangeRow& row : ChangesOf(changes)) {
        rows.push_back(
            {{ToWide(row.device), ToWide(row.what), ToWide(row.before), ToWide(row.after)}});
        rows.back().hasCounts = row.what.rfind("page count", 0) == 0;
    }
    comparison_.Open(state_.window, Text(IDS_COMPARE_TITLE, {NameOf(FileName(path), *scan)}),
                     {{IDS_CHANGE_DEVICE, 300},
                      {IDS_FACT_WHAT, 120},
                      {IDS_CHANGE_BEFORE, 140},
                      {IDS_CHANGE_AFTER, 140}});
    comparison_.Show(ToWide(CountsOf(changes)), std::move(rows));
    return true;
}

void ScanCommands::RecordChanges() {
    if (state_.progress.IsSearching()) return;  // a device may still answer
    const std::string time = UtcNow();
    bool hasChanged = false;
    const DeviceView& view = state_.session.view;
    for (const DeviceRow& row : view.AllRows())
        hasChanged |= !view.IsOther(row) && state_.changes.Add(row, time);
    if (!hasChanged) return;
    const DeviceRow* const seen = view.SelectedRow();
    if (seen && GetActiveWindow() == state_.window) state_.changes.Unmark(*seen);
    FLASHWINFO flash = {sizeof flash, state_.window, FLASHW_TRAY | FLASHW_TIMERNOFG, 0, 0};
    if (!GetActiveWindow()) FlashWindowEx(&flash);
    ShowChanges();
}

void ScanCommands::OpenChanges() {
    changes_.Open(state_.window, Text(IDS_CHANGES_TITLE),
                  {{IDS_CALL_TIME, 120},
                   {IDS_CHANGE_DEVICE, 270},
                   {IDS_CHANGE_BEFORE, 150},
                   {IDS_CHANGE_AFTER, 150}});
    ShowChanges();
}

void ScanCommands::ShowChanges() {
    std::vector<ListRow> rows;
    for (const StateChange& one : state_.changes.Changes())
        rows.push_back(
            {{ToWide(one.time), ToWide(one.device), ToWide(one.before), ToWide(one.after)}});
    const std::wstring note = Text(IDS_CHANGES_NOTE, {Grouped(rows.size())});
    changes_.Show(note, std::move(rows));
}

bool ScanCommands::SaveTo(const std::string& path) {
    std::string reason;
    const auto text = WriteScan(state_.session.GetScan(), reason);
    if (!text) return state_.ReportProblem(Text(IDS_TOO_LARGE, {ToWide(reason), ToWide(path)}));
    if (!SaveTextTo(*text, path)) return false;
    state_.session.SetSaved();
    DeleteRecoveryFile();
    // A list to which devices were added is not that of a file any more.
    SetFile(state_.file.empty() ? L"" : NameOf(FileName(path), state_.session.GetScan()));
    return true;
}

bool ScanCommands::SaveTextTo(const std::string& text, const std::string& path) {
    std::string reason;
    if (!ReplaceFileText(path, text, reason))
        return state_.ReportProblem(Text(IDS_NOT_SAVED, {ToWide(reason), ToWide(path)}));
    state_.progress.SetNote(Text(IDS_SAVED, {ToWide(path)}));
    return true;
}

// Saves the table of another window. That is disabled meanwhile, and gets the focus back.
void ScanCommands::SaveTable(const std::string& csv) {
    struct Waiting {
        explicit Waiting(HWND table) : window(table) { EnableWindow(window, FALSE); }
        ~Waiting() {
            EnableWindow(window, TRUE);
            SetActiveWindow(window);
        }
        const HWND window;
    };
    const HWND table = GetActiveWindow();
    std::optional<Waiting> waiting;
    if (table && table != state_.window) waiting.emplace(table);
    const std::string path = AskPath(state_.window, IDS_CSV_FILES, L"csv", ProposedName(), true);
    if (!path.empty()) SaveTextTo(csv, path);
}

bool ScanCommands::SaveCsvTo(const std::string& path) {
    const std::vector<Column> columns = list_.Columns();
    std::vector<unsigned> headings;
    headings.reserve(columns.size());
    for (const Column column : columns)
        headings.push_back(IDS_COLUMN_NAME + static_cast<unsigned>(column));
    const DeviceView& view = state_.session.view;
    const auto cell = [&](size_t row, size_t column) {
        return ShownText(view.Row(row), columns[column], true);
    };
    return SaveTextTo(CsvText(headings, view.Count(), cell), path);
}

bool ScanCommands::SaveJsonTo(const std::string& path) {
    std::vector<PrinterLine> lines;
    const DeviceView& view = state_.session.view;
    for (size_t row = 0; row < view.Count(); ++row)
        lines.push_back(state_.session.LineOf(view.Row(row)));
    return SaveTextTo(PrintersJson(lines), path);
}

bool ScanCommands::MayReplace(unsigned question) {
    state_.handleResults();  // so that nothing unsaved is overlooked
    const unsigned obstacle = state_.Obstacle();
    if (obstacle != 0) ShowProblem(state_.window, Text(obstacle), false);
    return obstacle == 0 && MayDrop(question);
}

bool ScanCommands::MayDrop(unsigned question) {
    if (state_.options.exit || state_.isSessionEnding || !state_.session.IsUnsaved()) return true;
    const int answer =
        AskYesNoCancel(state_.window, Text(question), IDS_ASK_SAVE_YES, IDS_ASK_SAVE_NO);
    if (answer == IDYES) Save();
    return answer == IDNO || !state_.session.IsUnsaved();
}

void ScanCommands::SaveForRecovery() {
    if (state_.options.exit || !state_.session.IsUnsaved()) return;
    std::string reason;
    const auto text = WriteScan(state_.session.GetScan(), reason);
    for (int number = 1; number <= kMaxRecoveryFiles; ++number) {
        const std::string path = RecoveryPath(number);
        if (!OpenExclusively(path, CREATE_NEW)) continue;  // of another window
        if (text && ReplaceFileText(path, *text, reason)) return DeleteRecoveryFile();
        return void(DeleteFileW(SystemPath(path).c_str()));
    }
}

void ScanCommands::OfferRecovery() {
    for (int number = 1; number <= kMaxRecoveryFiles; ++number) {
        recoveryPath_ = RecoveryPath(number);
        std::string ignored;
        bool isBroken = false;
        auto scan = LoadScan(recoveryPath_, isBroken, ignored);
        // No other window offers a file that is open here.
        recoveryFile_ = OpenExclusively(recoveryPath_, OPEN_EXISTING);
        if (!scan || !recoveryFile_) continue;  // it stays for the next start
        const int answer = AskYesNoCancel(state_.window, Text(IDS_ASK_KEPT), IDS_ASK_KEPT_SHOW,
                                          IDS_ASK_KEPT_DELETE, IDS_ASK_KEPT_LATER);
        if (answer == IDNO) DeleteRecoveryFile();
        if (answer != IDYES) continue;
        ShowScan(*std::move(scan));
        state_.session.SetSaved(false);
        state_.session.AdoptAdded();
        return SetFile(NameOf(Text(IDS_KEPT_SCAN), state_.session.GetScan()));
    }
    recoveryFile_.Reset();
}

void ScanCommands::DeleteRecoveryFile() {
    if (!recoveryFile_) return;
    recoveryFile_.Reset();
    DeleteFileW(SystemPath(recoveryPath_).c_str());
}

}  // namespace vndiscover::host
