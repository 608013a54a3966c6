// window_follow.exe [OPTION...]: starts the VnBrowser.exe beside it with these options, and writes
// what its list of devices shows, five times a second, as a line of JSON: milliseconds since the
// start, and for each device its address, state and lowest supply. An empty line follows when
// nothing is sent any more. Each line of its standard input presses Find after that; the end of the
// input closes the window at once.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>
#include <thread>

#include "model/scan/columns.h"
#include "window/resource.h"

namespace vndiscover::host {
namespace {

constexpr DWORD kPauseMs = 200;
constexpr ULONGLONG kStartMs = 60000, kSearchMs = 240000;

// Memory of another process, which its list writes texts to.
class RemoteText {
  public:
    explicit RemoteText(HANDLE process)
        : process_(process),
          place_(VirtualAllocEx(process, nullptr, sizeof(Cell), MEM_COMMIT, PAGE_READWRITE)) {}

    // A cell's text without what JSON would have to escape.
    std::string Of(HWND list, size_t row, Column column) {
        Cell cell = {};
        char* const place = static_cast<char*>(place_);
        cell.item.iSubItem = static_cast<int>(
            std::count_if(kColumns, kColumns + static_cast<size_t>(column),
                          [](const ColumnInfo& before) { return before.isVisible; }));
        cell.item.cchTextMax = static_cast<int>(std::size(cell.text));
        cell.item.pszText = reinterpret_cast<wchar_t*>(place + offsetof(Cell, text));
        if (!WriteProcessMemory(process_, place, &cell, sizeof cell, nullptr)) return "";
        SendMessageW(list, LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(place));
        if (!ReadProcessMemory(process_, place, &cell, sizeof cell, nullptr)) return "";
        std::string text;
        for (const wchar_t* at = cell.text; *at; ++at) {
            const bool isFirstSpace = *at == L' ' && text.empty();  // after a mark
            if (*at >= L' ' && *at < 127 && *at != L'"' && *at != L'\\' && !isFirstSpace)
                text += static_cast<char>(*at);
        }
        return text;
    }

  private:
    struct Cell {
        LVITEMW item;
        wchar_t text[128];
    };
    HANDLE process_;
    void* place_;
};

bool IsSending(HWND window) {
    wchar_t text[32] = L"";
    SendDlgItemMessageW(window, IDC_FIND, WM_GETTEXT, std::size(text),
                        reinterpret_cast<LPARAM>(text));
    return std::wcscmp(text, L"Fi&nd") != 0;
}

std::atomic<int> g_orders{0};
std::atomic<bool> g_isInputOver{false};

void ReadInput() {
    char order[16];
    while (std::fgets(order, sizeof order, stdin)) ++g_orders;
    g_isInputOver = true;
}

// False: it did not end, or the input did.
bool FollowSearch(HWND window, RemoteText& text, ULONGLONG start) {
    const HWND list = GetDlgItem(window, IDC_DEVICES);
    const ULONGLONG end = GetTickCount64() + kSearchMs;
    bool isSending = true;
    while (isSending && !g_isInputOver && GetTickCount64() < end) {
        Sleep(kPauseMs);
        isSending = IsSending(window);
        const auto count = static_cast<size_t>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
        std::string rows;
        for (size_t row = 0; row < count; ++row) {
            if (row != 0) rows += ", ";
            rows += "\"" + text.Of(list, row, Column::kAddress) + "\": [\"" +
                    text.Of(list, row, Column::kState) + "\", \"" +
                    text.Of(list, row, Column::kSupplies) + "\"]";
        }
        std::printf("{\"ms\": %llu, \"rows\": {%s}}\n", GetTickCount64() - start, rows.c_str());
        std::fflush(stdout);
    }
    std::printf("\n");
    std::fflush(stdout);
    return !isSending;
}

int Follow(std::wstring line) {
    STARTUPINFOW info = {};
    info.cb = sizeof info;
    PROCESS_INFORMATION process;
    const ULONGLONG start = GetTickCount64();
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &info,
                        &process))
        return 2;
    HWND window = nullptr;
    while (GetTickCount64() < start + kStartMs && (!window || !GetDlgItem(window, IDC_STATUS))) {
        Sleep(5);
        window = FindWindowW(L"VnBrowser", nullptr);
    }
    RemoteText text(process.hProcess);
    std::thread(ReadInput).detach();
    bool isOver = window && FollowSearch(window, text, start);
    for (int done = 0; isOver && !g_isInputOver;) {
        Sleep(kPauseMs);
        if (done == g_orders) continue;
        ++done;
        const ULONGLONG again = GetTickCount64();
        SendMessageW(window, WM_COMMAND, IDC_FIND, 0);
        isOver = FollowSearch(window, text, again);
    }
    PostMessageW(window, WM_CLOSE, 0, 0);
    const ULONGLONG end = GetTickCount64() + kStartMs;
    while (WaitForSingleObject(process.hProcess, kPauseMs) != WAIT_OBJECT_0 &&
           GetTickCount64() < end)
        PostMessageW(GetLastActivePopup(window), WM_COMMAND, IDNO, 0);  // the scan is not saved
    return isOver ? 0 : 1;
}

}  // namespace
}  // namespace vndiscover::host

int main(int argc, char** argv) {
    std::wstring line = L"VnBrowser.exe";
    for (int index = 1; index < argc; ++index)
        line += L" " + std::wstring(argv[index], argv[index] + std::strlen(argv[index]));
    return vndiscover::host::Follow(std::move(line));
}
