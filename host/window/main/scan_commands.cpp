#include "window/main/scan_commands.h"

#include <utility>

#include "model/scan/scan_report.h"
#include "platform/wide_text.h"
#include "window/dialogs/dialogs.h"
#include "window/pages/page_window.h"
#include "window/resource.h"
#include "window/store/scan_files.h"
#include "window/strings.h"

namespace vndiscover::host {

void ScanCommands::WithPath(unsigned kind, const wchar_t* extension, bool isForSaving,
                            bool (ScanCommands::*method)(const std::string& path)) {
    const std::string path = AskPath(state_.window, kind, extension, isForSaving);
    if (!path.empty()) (this->*method)(path);
}

void ScanCommands::Open() {
    if (MayReplace()) WithPath(IDS_SCAN_FILES, L"json", false, &ScanCommands::OpenFrom);
}

void ScanCommands::Clear() {
    if (!MayReplace()) return;
    state_.session.Clear();
    state_.progress.ForgetSearch();
    state_.showRows();
}

bool ScanCommands::HasScan() const {
    return state_.progress.HasSearched() || !state_.session.GetScan().answers.empty();
}

bool ScanCommands::OpenFrom(const std::string& path) {
    std::wstring problem;
    auto scan = LoadScan(path, problem);
    if (!scan) return state_.ReportProblem(problem);
    state_.session.SetScan(std::move(*scan));
    state_.showRows();
    return true;
}

bool ScanCommands::CompareWith(const std::string& path) {
    std::wstring problem;
    const auto scan = LoadScan(path, problem);
    if (!scan) return state_.ReportProblem(problem);
    OpenPage(state_.window, Text(IDS_COMPARE_TITLE, {ToWide(path)}),
             RowsOf(ReportOf(CompareDevices(MakeDevices(*scan), state_.session.Devices()))));
    return true;
}

bool ScanCommands::SaveTo(const std::string& path) {
    std::wstring note;
    if (!SaveScan(state_.session.GetScan(), path, note)) return state_.ReportProblem(note);
    state_.progress.SetNote(note);
    state_.session.SetSaved();
    return true;
}

bool ScanCommands::SaveTextTo(const std::string& text, const std::string& path) {
    std::wstring note;
    if (!SaveText(text, path, note)) return state_.ReportProblem(note);
    state_.progress.SetNote(note);
    return true;
}

bool ScanCommands::MayReplace() {
    state_.handleResults();  // those that have not been handled yet
    const bool isFilled = state_.progress.IsSearching() || state_.progress.IsAsking() ||
                          state_.workers->Waiting() != 0;
    if (isFilled) ShowProblem(state_.window, Text(IDS_AWAITS_ANSWERS), false);
    return !isFilled && MayDrop();
}

bool ScanCommands::MayDrop() {
    if (state_.options.exit || !state_.session.IsUnsaved()) return true;
    const int answer = AskToSave(state_.window);
    if (answer == IDYES) Save();
    return answer == IDNO || !state_.session.IsUnsaved();
}

}  // namespace vndiscover::host
