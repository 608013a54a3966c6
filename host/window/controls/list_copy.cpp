#include "window/controls/list_copy.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <vector>

#include "platform/wide_text.h"
#include "values/csv_cell.h"
#include "window/controls/lists.h"
#include "window/controls/popup_menu.h"
#include "window/resource.h"

namespace vndiscover::host {
namespace {

// Programs that watch the clipboard open it for a moment.
bool OpenSoon(HWND owner) {
    constexpr int kTries = 5;
    constexpr DWORD kPauseMs = 20;
    for (int tries = 0; tries < kTries; ++tries) {
        if (OpenClipboard(owner)) return true;
        Sleep(kPauseMs);
    }
    return false;
}

bool Put(HWND owner, const std::wstring& text) {
    if (!OpenSoon(owner)) return false;
    EmptyClipboard();
    const size_t size = (text.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    bool isDone = false;
    if (void* place = memory ? GlobalLock(memory) : nullptr) {
        std::copy_n(text.c_str(), text.size() + 1, static_cast<wchar_t*>(place));
        GlobalUnlock(memory);
        isDone = SetClipboardData(CF_UNICODETEXT, memory) != nullptr;
    }
    // The system owns it from now on, unless the call fails.
    if (!isDone) GlobalFree(memory);
    CloseClipboard();
    return isDone;
}

constexpr int kValue = 1;  // the column after the one that names the row

std::wstring CellText(HWND list, int row, int column) {
    for (size_t size = 512;; size *= 8) {
        std::wstring text(size, L'\0');
        LVITEMW item = {};
        item.iSubItem = column;
        item.pszText = text.data();
        item.cchTextMax = static_cast<int>(size);
        text.resize(static_cast<size_t>(SendMessageW(
            list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item))));
        if (text.size() + 1 < size) return text;  // otherwise it may be cut
    }
}

std::wstring RowText(HWND list, int row) {
    std::wstring line;
    for (int column = 0; column < CountColumns(list); ++column)
        line += (column == 0 ? L"" : L"\t") + RowCell(CellText(list, row, column));
    return line + L"\r\n";
}

std::vector<std::wstring> Headings(HWND list) {
    std::vector<std::wstring> headings;
    for (int index = 0; index < CountColumns(list); ++index) {
        wchar_t text[80] = L"";
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT;
        column.pszText = text;
        column.cchTextMax = 80;
        SendMessageW(list, LVM_GETCOLUMNW, static_cast<WPARAM>(index),
                     reinterpret_cast<LPARAM>(&column));
        headings.emplace_back(text);
    }
    return headings;
}

}  // namespace

bool CopyText(HWND owner, const std::wstring& text) {
    const bool isDone = Put(owner, text);
    SendMessageW(GetAncestor(owner, GA_ROOTOWNER), kCopied, isDone, 0);
    return isDone;
}

std::wstring RowCell(const std::wstring& text) { return ToWide(HarmlessCell(ToUtf8(text))); }

int CopyCommandOf(WPARAM key) {
    if (GetKeyState(VK_CONTROL) >= 0) return 0;
    const bool isShifted = GetKeyState(VK_SHIFT) < 0;
    if (key == 'C') return isShifted ? IDM_COPY_CELL : IDM_COPY_ROW;
    return key == 'T' && isShifted ? IDM_COPY_TABLE : 0;
}

bool IsList(HWND control) {
    wchar_t type[20] = L"";
    GetClassNameW(control, type, 20);
    return lstrcmpiW(type, WC_LISTVIEWW) == 0;
}

POINT BelowSelected(HWND list) {
    RECT row = {};
    const int selected = SelectedRow(list);
    if (selected >= 0) ListView_GetItemRect(list, selected, &row, LVIR_LABEL);
    POINT point = {row.left, row.bottom};
    ClientToScreen(list, &point);
    return point;
}

void CopyFromList(HWND list, int command) {
    const int row = SelectedRow(list);
    std::wstring text;
    if (command == IDM_COPY_TABLE) {
        for (int index = 0; index < ListView_GetItemCount(list); ++index)
            text += RowText(list, index);
    } else if (row >= 0 && command == IDM_COPY_ROW) {
        text = RowText(list, row);
    } else if (row >= 0 && command == IDM_COPY_CELL) {
        text = CellText(list, row, kValue);
    } else if (row >= 0 && command >= IDM_CELL) {
        text = CellText(list, row, command - IDM_CELL);
    }
    if (!text.empty()) CopyText(list, text);
}

void ShowCopyMenu(HWND list, LPARAM place) {
    POINT point = {GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    LVHITTESTINFO cell = {};
    cell.pt = point;
    ScreenToClient(list, &cell.pt);
    if (place == kByKeyboard) {
        point = BelowSelected(list);
    } else if (ListView_SubItemHitTest(list, &cell) < 0) {
        return;
    }
    const HMENU menu =
        MakePopup({IDM_COPY_CELL, IDS_MENU_CELLS, IDM_COPY_ROW, IDM_COPY_TABLE}, Headings(list));
    int command = TrackPopupMenu(menu, TPM_RIGHTBUTTON | TPM_RETURNCMD, point.x, point.y, 0,
                                 GetAncestor(list, GA_ROOT), nullptr);
    DestroyMenu(menu);
    if (command == IDM_COPY_CELL && place != kByKeyboard) command = IDM_CELL + cell.iSubItem;
    CopyFromList(list, command);
}

}  // namespace vndiscover::host
