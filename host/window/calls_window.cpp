#include "window/calls_window.h"

#include <commctrl.h>

#include <iterator>
#include <utility>

#include "platform/wide_text.h"
#include "values/plain_text.h"
#include "window/clipboard.h"
#include "window/dialogs.h"
#include "window/dpi.h"
#include "window/list_copy.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr size_t kMaxCalls = 1000;
constexpr struct {
    unsigned heading;
    int width;  // in pixels at 96 DPI
} kColumns[] = {
    {IDS_CALL_TIME, 140}, {IDS_CALL_EXPORT, 315}, {IDS_CALL_RESULT, 190}, {IDS_CALL_MS, 50}};
enum { kTime, kExport, kResult, kDuration };

std::wstring CellText(const Call& call, int column) {
    switch (column) {
        case kTime:
            return LocalTime(call.time);
        case kExport:
            return ToWide(PlainText(CallLine(call)));
        case kResult:
            if (call.more != 0)
                return Text(IDS_CALL_MORE,
                            {std::to_wstring(call.more + 1), ToWide(PlainText(call.result))});
            return call.answers ? Text(IDS_CALL_ANSWERS,
                                       {ToWide(call.result), std::to_wstring(*call.answers)})
                                : ToWide(PlainText(call.result));
        default:
            return std::to_wstring(call.milliseconds);
    }
}

// With the line breaks of an edit control.
std::wstring Lines(const std::string& text) {
    std::string lines;
    for (const char letter : text)
        lines += letter == '\n' ? std::string("\r\n") : std::string(1, letter);
    return ToWide(lines);
}

}  // namespace

CallsWindow::~CallsWindow() {
    if (dialog_) DestroyWindow(dialog_);
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
    if (!dialog_ || (added == 0 && !isFolded)) return;
    const HWND list = GetDlgItem(dialog_, IDC_CALLS);
    const int selected = ListView_GetNextItem(list, -1, LVNI_SELECTED);
    ListView_SetItemCountEx(list, static_cast<int>(calls_.size()), LVSICF_NOSCROLL);
    // The selection stays with its call.
    const size_t row = selected < 0 ? 0 : static_cast<size_t>(selected) + added;
    ListView_SetItemState(list, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    if (row < calls_.size())
        ListView_SetItemState(list, static_cast<int>(row), LVIS_SELECTED | LVIS_FOCUSED,
                              LVIS_SELECTED | LVIS_FOCUSED);
    InvalidateRect(list, nullptr, FALSE);
    if (selected < 0 || row >= calls_.size()) ShowText();
}

void CallsWindow::Open(HWND owner) {
    if (!dialog_)
        CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_CALLS), owner, Procedure,
                           reinterpret_cast<LPARAM>(this));
    if (!dialog_) return;
    ShowWindow(dialog_, SW_SHOW);
    SetActiveWindow(dialog_);
}

INT_PTR CALLBACK CallsWindow::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, GWLP_USERDATA, lParam);
        reinterpret_cast<CallsWindow*>(lParam)->Begin(dialog);
        return TRUE;
    }
    auto* self = reinterpret_cast<CallsWindow*>(GetWindowLongPtrW(dialog, GWLP_USERDATA));
    if (!self) return FALSE;
    if (message == WM_COMMAND) self->OnCommand(LOWORD(wParam), HIWORD(wParam));
    if (message == WM_NCDESTROY) {
        self->dialog_ = nullptr;
        DeleteObject(self->font_);
    }
    if (message == WM_CONTEXTMENU && IsList(reinterpret_cast<HWND>(wParam)))
        ShowCopyMenu(reinterpret_cast<HWND>(wParam), lParam);
    if (message != WM_NOTIFY) return FALSE;
    const auto* header = reinterpret_cast<const NMHDR*>(lParam);
    if (header->code == LVN_GETDISPINFOW) self->FillCell(lParam);
    if (header->code == LVN_ITEMCHANGED) self->ShowText();
    return FALSE;
}

void CallsWindow::Begin(HWND dialog) {
    dialog_ = dialog;
    SetDialogTexts(dialog, IDS_CALLS_TITLE);
    SetDlgItemTextW(dialog, IDCANCEL, Text(IDS_CALL_CLOSE).c_str());
    const HWND list = GetDlgItem(dialog, IDC_CALLS);
    SetWindowTextW(list, Text(IDS_CALLS_TITLE).c_str());
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    const int dpi = DpiOf(dialog);
    for (size_t index = 0; index < std::size(kColumns); ++index) {
        std::wstring heading = Text(kColumns[index].heading);
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.cx = MulDiv(kColumns[index].width, dpi, 96);
        column.pszText = heading.data();
        SendMessageW(list, LVM_INSERTCOLUMNW, index, reinterpret_cast<LPARAM>(&column));
    }
    font_ = CreateFontW(-MulDiv(9, dpi, 72), 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0,
                        CLEARTYPE_QUALITY, FIXED_PITCH | FF_MODERN, L"Consolas");
    SendDlgItemMessageW(dialog, IDC_CALL_TEXT, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    CheckRadioButton(dialog, IDS_CALL_CPP, IDS_CALL_COMMAND, IDS_CALL_CPP);
    added_ = calls_.size();
    ShowText();
    Refresh();
}

void CallsWindow::OnCommand(int id, int code) {
    if (id == IDCANCEL) DestroyWindow(dialog_);
    if (code != BN_CLICKED) return;
    if (id >= IDS_CALL_CPP && id <= IDS_CALL_COMMAND) ShowText();
    if (id == IDS_CALL_COPY) CopyText(dialog_, WindowText(GetDlgItem(dialog_, IDC_CALL_TEXT)));
}

void CallsWindow::FillCell(LPARAM info) const {
    LVITEMW& item = reinterpret_cast<NMLVDISPINFOW*>(info)->item;
    const auto row = static_cast<size_t>(item.iItem);
    if (!(item.mask & LVIF_TEXT) || row >= calls_.size()) return;
    lstrcpynW(item.pszText, CellText(calls_[row], item.iSubItem).c_str(), item.cchTextMax);
}

const Call* CallsWindow::Selected() const {
    const int row = ListView_GetNextItem(GetDlgItem(dialog_, IDC_CALLS), -1, LVNI_SELECTED);
    return row < 0 || static_cast<size_t>(row) >= calls_.size() ? nullptr
                                                                : &calls_[static_cast<size_t>(row)];
}

void CallsWindow::ShowText() {
    const Call* call = Selected();
    std::wstring text = Text(IDS_CALLS_NONE);
    if (call) {
        const CallLanguage language =
            IsDlgButtonChecked(dialog_, IDS_CALL_COMMAND)  ? CallLanguage::kCommand
            : IsDlgButtonChecked(dialog_, IDS_CALL_CSHARP) ? CallLanguage::kCSharp
                                                           : CallLanguage::kCpp;
        text = Lines(CallText(*call, language));
        if (text.empty()) text = Text(IDS_CALL_NO_COMMAND);
    }
    ChangeText(GetDlgItem(dialog_, IDC_CALL_TEXT), text);
}

}  // namespace vndiscover::host
