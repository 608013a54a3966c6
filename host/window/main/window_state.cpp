#include "window/main/window_state.h"

#include <shellapi.h>

#include "model/scan/device_view.h"
#include "platform/saved_file.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

bool WindowState::ReportProblem(const std::wstring& text) {
    progress.SetNote(text);
    if (options.exit || !isSessionEnding) ShowProblem(window, text, options.exit);
    return false;
}

unsigned WindowState::Obstacle() const {
    if (!IsBusy()) return 0;
    if (progress.IsWalking()) return IDS_AWAITS_VALUES;
    const bool isList = progress.IsSearching() || (workers && workers->Now().read.total != 0);
    return isList ? IDS_AWAITS_ANSWERS : IDS_AWAITS_DEVICE;
}

std::optional<AskTarget> WindowState::SelectedTarget() const {
    const DeviceRow* row = session.view.SelectedRow();
    return row ? session.TargetOf(row->answers) : std::nullopt;
}

namespace {

void ReportUnopened(WindowState& state, const std::wstring& target, DWORD error) {
    state.ReportProblem(Text(IDS_NOT_OPENED, {target + ToWide(ErrorText(error))}));
}

}  // namespace

void OpenElsewhere(WindowState& state, const std::wstring& target, const wchar_t* program) {
    const wchar_t* const file = program ? program : target.c_str();
    const std::wstring argument = L"\"" + target + L"\"";
    const HINSTANCE opened = ShellExecuteW(
        state.window, L"open", file, program ? argument.c_str() : nullptr, nullptr, SW_SHOWNORMAL);
    const DWORD error = GetLastError();
    if (reinterpret_cast<INT_PTR>(opened) <= 32)  // documented as an error
        ReportUnopened(state, target, error);
}

// Opens it as text: few computers have a program for Markdown.
void ShowHelp(WindowState& state) {
    const std::string own = OwnPath();
    const std::string folder = own.substr(0, own.find_last_of('\\'));
    const std::string page = folder + "\\..\\docs\\vnbrowser.md";
    // Notepad would offer to create it.
    if (!FileExists(page)) return ReportUnopened(state, ToWide(page), ERROR_FILE_NOT_FOUND);
    const std::wstring notepad = SystemFile(L"notepad.exe");
    if (notepad.empty()) return ReportUnopened(state, L"notepad.exe", GetLastError());
    OpenElsewhere(state, ToWide(page), notepad.c_str());
}

void ShowAbout(HWND owner) {
    const auto version = [](const wchar_t* module) {
        return ToWide(VersionOf(GetModuleHandleW(module)));
    };
    const std::wstring text =
        Text(IDS_ABOUT, {version(nullptr), version(L"VnDiscover.dll"), ToWide(WindowsVersion())});
    const std::wstring title = Text(IDS_ABOUT_TITLE);
    MSGBOXPARAMSW box = {};
    box.cbSize = sizeof box;
    box.hwndOwner = owner;
    box.hInstance = GetModuleHandleW(nullptr);
    box.lpszText = text.c_str();
    box.lpszCaption = title.c_str();
    box.dwStyle = MB_OK | MB_USERICON;
    box.lpszIcon = MAKEINTRESOURCEW(1);
    MessageBoxIndirectW(&box);
}

}  // namespace vndiscover::host
