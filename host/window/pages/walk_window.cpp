#include "window/pages/walk_window.h"

#include <utility>

#include "platform/wide_text.h"
#include "values/object_names.h"
#include "values/text.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr wchar_t kDefaultRoot[] = L".1.3.6.1.2.1";
constexpr WPARAM kMaxRootLength = 1000;

std::wstring EndText(const WalkEnd& end) {
    const std::wstring count = Grouped(end.variables), at = ToWide(OidToText(end.at));
    if (end.variables >= kMaxWalkVariables) return Text(IDS_WALK_FULL, {count});
    if (end.isStopped) return Text(IDS_WALK_STOPPED, {count});
    if (end.last.status != Status::kAnswered)
        return Text(IDS_WALK_PROBLEM, {count, ToWide(Problem(end.last))});
    if (end.step == WalkStep::kNotIncreasing) return Text(IDS_WALK_TURNS, {count, at});
    if (end.step == WalkStep::kLastReachable) return Text(IDS_WALK_LAST, {count, at});
    if (end.skipped > 0) return Text(IDS_WALK_SKIPPED, {count, ToWide(end.SkippedText())});
    return Text(IDS_WALK_END, {count});
}

}  // namespace

void WalkWindow::Open(HWND owner, AskTarget target, const std::wstring& name) {
    if (IsOpen() && target.address != target_.address) Close();
    target_ = std::move(target);
    OpenDialog(owner, {IDD_WALK,
                       Text(IDS_WALK_TITLE, {name}),
                       {{IDS_WALK_OID, 210}, {IDS_COLUMN_NAME, 190}, {IDS_FACT_VALUE, 290}}});
}

bool WalkWindow::IsShown(unsigned walk) const {
    return IsOpen() && state_ != State::kIdle && walk == walk_;
}

void WalkWindow::OnBegan(unsigned walk) {
    if (!IsShown(walk) || state_ != State::kWaiting) return;
    state_ = State::kWalking;
    startMs_ = GetTickCount64();
}

void WalkWindow::Add(unsigned walk, Answer variable) {
    if (IsShown(walk)) values_.push_back(std::move(variable));
}

void WalkWindow::OnEnded(unsigned walk, const WalkEnd& end, const std::string& problem) {
    if (!IsShown(walk)) return;
    state_ = State::kIdle;
    SetItem(IDC_WALK_START, Text(IDS_WALK_START));
    EnableWindow(Item(IDC_WALK_START), TRUE);
    const std::wstring count = Grouped(values_.size());
    SetItem(IDC_WALK_STATE,
            problem.empty() ? EndText(end) : Text(IDS_WALK_PROBLEM, {count, ToWide(problem)}));
    ListDialog::Refresh();
}

void WalkWindow::Refresh() {
    if (!IsOpen() || state_ == State::kIdle) return;
    ListDialog::Refresh();
    const std::wstring seconds = std::to_wstring((GetTickCount64() - startMs_) / 1000);
    SetItem(IDC_WALK_STATE, state_ == State::kWaiting
                                ? Text(IDS_WALK_WAITING, {seconds})
                                : Text(IDS_WALKING, {Grouped(values_.size()), seconds}));
}

void WalkWindow::OnOpened() {
    ListDialog::OnOpened();
    SendMessageW(Item(IDC_WALK_ROOT), EM_LIMITTEXT, kMaxRootLength, 0);
    SetItem(IDC_WALK_ROOT, kDefaultRoot);
    SetItem(IDC_WALK_STATE, Text(IDS_WALK_READY));
}

// The walk may still run.
void WalkWindow::OnClosed() {
    if (std::exchange(state_, State::kIdle) != State::kIdle && workers_) workers_->StopWalk();
    values_.clear();
}

void WalkWindow::OnCommand(int id) {
    if (id != IDC_WALK_START || !workers_) return;
    // Enter in the field starts a walk, but does not stop the one that it has just started.
    if (state_ == State::kIdle)
        Start();
    else if (GetFocus() != Item(IDC_WALK_ROOT))
        Stop();
}

void WalkWindow::Start() {
    const std::wstring text = WindowText(Item(IDC_WALK_ROOT));
    const auto root = ParseOidOrName(ToUtf8(text));
    const Oid start = root ? WalkStart(*root) : Oid();
    if (!root || !FitsRequest(start) || IsMisencoded(start)) {
        SetItem(IDC_WALK_STATE, Text(root ? IDS_WALK_NO_ROOT : IDS_WALK_BAD_ROOT, {text}));
        SetFocus(Item(IDC_WALK_ROOT));
        return;
    }
    values_.clear();
    state_ = State::kWaiting;
    startMs_ = GetTickCount64();
    SetItem(IDC_WALK_START, Text(IDS_WALK_STOP));
    workers_->Walk(target_, *root, ++walk_);
    Refresh();
}

void WalkWindow::Stop() {
    state_ = State::kStopping;  // until the last answer
    SetItem(IDC_WALK_START, Text(IDS_STOPPING));
    if (GetFocus() == Item(IDC_WALK_START)) SetFocus(list_.Handle());
    EnableWindow(Item(IDC_WALK_START), FALSE);
    workers_->StopWalk();
}

std::wstring WalkWindow::CellText(size_t row, size_t column) const {
    const Answer& answer = values_[row];
    const std::string oid = OidToText(answer.oid);
    if (column == 0) return ToWide(oid);
    if (column == 1) {
        const std::string name = NameText(answer.oid);
        return name == oid ? L"" : ToWide(name);
    }
    return ToWide(FormatNamedValue(answer.oid, answer.type, answer.bytes) + CutNote(answer));
}

}  // namespace vndiscover::host
