#include "window/walk_window.h"

#include <commctrl.h>

#include <utility>

#include "platform/wide_text.h"
#include "values/object_names.h"
#include "values/plain_text.h"
#include "window/dialogs.h"
#include "window/dpi.h"
#include "window/list_copy.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr wchar_t kDefaultRoot[] = L".1.3.6.1.2.1";
constexpr WPARAM kMaxRootLength = 1000;

std::wstring EndText(const WalkEnd& end) {
    const std::wstring count = std::to_wstring(end.variables), at = ToWide(OidToText(end.at));
    if (end.variables >= kMaxWalkVariables) return Text(IDS_WALK_FULL, {count});
    if (end.isStopped) return Text(IDS_WALK_STOPPED, {count});
    if (end.last.status != Status::kAnswered)
        return Text(IDS_WALK_PROBLEM, {count, ToWide(Problem(end.last))});
    if (end.step == WalkStep::kNotIncreasing) return Text(IDS_WALK_TURNS, {count, at});
    if (end.step == WalkStep::kLastReachable) return Text(IDS_WALK_LAST, {count, at});
    return Text(IDS_WALK_END, {count});
}

}  // namespace

WalkWindow::~WalkWindow() {
    if (dialog_) DestroyWindow(dialog_);
}

void WalkWindow::Open(HWND owner, AskTarget target) {
    if (dialog_ && target.address != target_.address) DestroyWindow(dialog_);
    target_ = std::move(target);
    if (!dialog_)
        CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_WALK), owner, Procedure,
                           reinterpret_cast<LPARAM>(this));
    if (!dialog_) return;
    ShowWindow(dialog_, SW_SHOW);
    SetActiveWindow(dialog_);
}

void WalkWindow::Take(const Event& event) {
    if (!dialog_ || state_ == State::kIdle || event.walk != walk_) return;
    if (event.kind == Event::kWalkBegan && state_ == State::kWaiting) {
        state_ = State::kWalking;
        startMs_ = GetTickCount64();
    }
    if (event.kind == Event::kWalkStep) values_.push_back(event.variable);
    if (event.kind != Event::kWalked) return;
    state_ = State::kIdle;
    SetDlgItemTextW(dialog_, IDS_WALK_START, Text(IDS_WALK_START).c_str());
    ShowState(EndText(event.walkEnd));
    ShowValues();
}

void WalkWindow::Refresh() {
    if (!dialog_ || state_ == State::kIdle) return;
    ShowValues();
    const std::wstring seconds = std::to_wstring((GetTickCount64() - startMs_) / 1000);
    ShowState(state_ == State::kWaiting
                  ? Text(IDS_WALK_WAITING, {seconds})
                  : Text(IDS_WALKING, {std::to_wstring(values_.size()), seconds}));
}

INT_PTR CALLBACK WalkWindow::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, GWLP_USERDATA, lParam);
        reinterpret_cast<WalkWindow*>(lParam)->Begin(dialog);
        return TRUE;
    }
    auto* self = reinterpret_cast<WalkWindow*>(GetWindowLongPtrW(dialog, GWLP_USERDATA));
    if (!self) return FALSE;
    if (message == WM_COMMAND) self->OnCommand(LOWORD(wParam));
    if (message == WM_CONTEXTMENU && reinterpret_cast<HWND>(wParam) == self->table_.Handle())
        ShowCopyMenu(self->table_.Handle(), lParam);
    if (message == WM_NOTIFY) self->table_.OnNotify(reinterpret_cast<NMHDR*>(lParam));
    if (message == WM_NCDESTROY) self->Forget();
    return FALSE;
}

void WalkWindow::Begin(HWND dialog) {
    dialog_ = dialog;
    const std::wstring title = Text(IDS_WALK_TITLE, {ToWide(PlainText(target_.address))});
    SetDialogTexts(dialog, IDS_TITLE);
    SetWindowTextW(dialog, title.c_str());
    SetDlgItemTextW(dialog, IDCANCEL, Text(IDS_CALL_CLOSE).c_str());
    SendDlgItemMessageW(dialog, IDC_WALK_ROOT, EM_LIMITTEXT, kMaxRootLength, 0);
    SetDlgItemTextW(dialog, IDC_WALK_ROOT, kDefaultRoot);
    ShowState(Text(IDS_WALK_READY));
    table_.Attach(GetDlgItem(dialog, IDC_WALK_VALUES));
    table_.Begin(title, {{IDS_WALK_OID, 210}, {IDS_COLUMN_NAME, 190}, {IDS_FACT_VALUE, 290}},
                 DpiOf(dialog));
}

// The dialog has gone; the worker may still wait for its last answer.
void WalkWindow::Forget() {
    dialog_ = nullptr;
    if (std::exchange(state_, State::kIdle) != State::kIdle) actions_.stop();
    values_.clear();
}

void WalkWindow::OnCommand(int id) {
    if (id == IDCANCEL) {
        DestroyWindow(dialog_);
    } else if (id == IDS_WALK_START) {
        if (state_ == State::kIdle) {
            Start();
        } else {
            Stop();
        }
    } else if (id == IDS_WALK_COPY_ROW || id == IDS_WALK_COPY_ALL) {
        CopyFromList(table_.Handle(), id == IDS_WALK_COPY_ROW ? IDM_COPY_ROW : IDM_COPY_TABLE);
    }
}

void WalkWindow::Start() {
    const std::wstring text = WindowText(GetDlgItem(dialog_, IDC_WALK_ROOT));
    const auto root = ParseOidOrName(ToUtf8(text));
    const Oid start = root ? WalkStart(*root) : Oid();
    if (!root || !FitsRequest(start) || IsMisencoded(start)) {
        ShowState(Text(root ? IDS_WALK_NO_ROOT : IDS_WALK_BAD_ROOT, {text}));
        SetFocus(GetDlgItem(dialog_, IDC_WALK_ROOT));
        return;
    }
    values_.clear();
    table_.Show(0, nullptr);
    state_ = State::kWaiting;
    startMs_ = GetTickCount64();
    SetDlgItemTextW(dialog_, IDS_WALK_START, Text(IDS_WALK_STOP).c_str());
    actions_.start(target_, *root, ++walk_);
    Refresh();
}

void WalkWindow::Stop() {
    state_ = State::kStopping;  // until the last answer
    SetDlgItemTextW(dialog_, IDS_WALK_START, Text(IDS_STOPPING).c_str());
    actions_.stop();
}

void WalkWindow::ShowValues() {
    table_.Show(values_.size(),
                [this](size_t row, size_t column) { return CellText(row, column); });
}

void WalkWindow::ShowState(const std::wstring& text) {
    ChangeText(GetDlgItem(dialog_, IDC_WALK_STATE), text);
}

std::wstring WalkWindow::CellText(size_t row, size_t column) const {
    const Answer& answer = values_[row];
    const std::string oid = OidToText(answer.oid);
    if (column == 0) return ToWide(oid);
    if (column == 1) {
        const std::string name = NameText(answer.oid);
        return name == oid ? L"" : ToWide(name);
    }
    const std::wstring value = ToWide(FormatNamedValue(answer.oid, answer.type, answer.bytes));
    const bool isCut = answer.wholeSize > answer.bytes.size();
    return isCut ? Text(IDS_ANSWER_CUT, {value, std::to_wstring(answer.wholeSize)}) : value;
}

}  // namespace vndiscover::host
