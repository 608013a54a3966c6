#include "window/pages/calls_window.h"

#include <utility>

#include "platform/wide_text.h"
#include "values/text.h"
#include "window/controls/clipboard.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr size_t kMaxCalls = 1000;
enum { kTime, kExport, kDuration, kResult };

}  // namespace

std::wstring CallsWindow::CellText(size_t row, size_t column) const {
    const Call& call = calls_[row];
    switch (column) {
        case kTime:
            return LocalTime(call.time, 0, true);  // with seconds
        case kExport:
            return ToWide(PlainText(CallLine(call)));
        case kDuration:
            return Grouped(call.milliseconds) + L" ms";
        default:
            if (call.more != 0)
                return Text(IDS_CALL_MORE,
                            {Grouped(call.more + 1), ToWide(PlainText(call.result))});
            return call.answers
                       ? Text(IDS_CALL_ANSWERS, {ToWide(call.result), Grouped(*call.answers)})
                       : ToWide(PlainText(call.result));
    }
}

void CallsWindow::Add(Call call) {
    if (call.walk != 0 && !calls_.empty() && calls_.front().walk == call.walk) {
        ++calls_.front().more;
        isFolded_ = true;
        return;
    }
    calls_.push_front(std::move(call));
    if (calls_.size() > kMaxCalls) calls_.pop_back();
    ++added_;
}

void CallsWindow::Refresh() {
    const size_t added = std::exchange(added_, 0);
    const bool isFolded = std::exchange(isFolded_, false);
    if (!IsOpen() || (added == 0 && !isFolded)) return;
    const int selected = list_.Selected();
    list_.Refresh();
    // The selection stays with its call.
    const size_t row = static_cast<size_t>(selected) + added;
    const bool isStillThere = selected >= 0 && row < calls_.size();
    list_.Select(isStillThere ? static_cast<int>(row) : -1);
    OnSelected();
}

void CallsWindow::Open(HWND owner) {
    OpenDialog(owner, {IDD_CALLS,
                       Text(IDS_CALLS_TITLE),
                       {{IDS_CALL_TIME, 130},
                        {IDS_CALL_EXPORT, 330},
                        {IDS_CALL_DURATION, 65},
                        {IDS_CALL_RESULT, 160}},
                       IDC_CALL_TEXT});
}

void CallsWindow::OnOpened() {
    CheckRadioButton(dialog_, IDC_CALL_CPP, IDC_CALL_COMMAND, IDC_CALL_CPP);
    ListDialog::OnOpened();
    added_ = 0;
    isFolded_ = false;
}

void CallsWindow::OnFonts() {
    OwnedFont next(CreateFontW(-MulDiv(9, dpi_, 72), 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET,
                               0, 0, CLEARTYPE_QUALITY, FIXED_PITCH | FF_MODERN, L"Consolas"));
    SendMessageW(Item(IDC_CALL_TEXT), WM_SETFONT, reinterpret_cast<WPARAM>(next.Get()), TRUE);
    fixed_ = std::move(next);
}

void CallsWindow::OnCommand(int id) {
    if (id >= IDC_CALL_CPP && id <= IDC_CALL_COMMAND) OnSelected();
    if (id == IDC_CALL_COPY) CopyText(dialog_, WindowText(Item(IDC_CALL_TEXT)));
}

void CallsWindow::OnSelected() {
    ListDialog::OnSelected();
    const auto row = static_cast<size_t>(list_.Selected());
    const bool isSelected = row < calls_.size();
    const CallLanguage language =
        IsDlgButtonChecked(dialog_, IDC_CALL_COMMAND)  ? CallLanguage::kCommand
        : IsDlgButtonChecked(dialog_, IDC_CALL_CSHARP) ? CallLanguage::kCSharp
                                                       : CallLanguage::kCpp;
    const std::wstring call = isSelected ? EditText(CallText(calls_[row], language)) : L"";
    EnableWindow(Item(IDC_CALL_COPY), !call.empty());
    const unsigned instead = isSelected       ? IDS_CALL_NO_COMMAND
                             : calls_.empty() ? IDS_CALLS_NONE
                                              : IDS_CALLS_SELECT;
    SetItem(IDC_CALL_TEXT, call.empty() ? Text(instead) : call);
}

}  // namespace vndiscover::host
