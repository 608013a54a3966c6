#include "window/store/scan_files.h"

#include <commdlg.h>

#include "model/scan/scan_file.h"
#include "platform/saved_file.h"
#include "platform/wide_text.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

std::string AskPath(HWND owner, unsigned kind, const wchar_t* extension,
                    const std::wstring& proposed, bool isForSaving) {
    const std::wstring pattern = std::wstring(L"*.") + extension;
    std::wstring filter = Text(kind) + L'\0' + pattern + L'\0';
    wchar_t path[1024] = L"";
    lstrcpynW(path, proposed.c_str(), 1024);
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filter.c_str();
    dialog.lpstrFile = path;
    dialog.nMaxFile = 1024;
    dialog.lpstrDefExt = extension;
    dialog.Flags = OFN_NOCHANGEDIR | OFN_HIDEREADONLY |
                   (isForSaving ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST);
    const BOOL isChosen = isForSaving ? GetSaveFileNameW(&dialog) : GetOpenFileNameW(&dialog);
    return isChosen ? ToUtf8(path) : "";
}

std::optional<Scan> LoadScan(const std::string& path, std::wstring& problem) {
    std::string reason;
    bool isBroken = false;
    auto scan = LoadScan(path, isBroken, reason);
    if (!scan)
        problem = Text(isBroken ? IDS_BROKEN_SCAN : IDS_NOT_READ, {ToWide(reason), ToWide(path)});
    return scan;
}

std::string KeptPath() {
    const wchar_t* folder = _wgetenv(L"LOCALAPPDATA");
    return ToUtf8(std::wstring(folder ? folder : L".") + L"\\VnBrowser unsaved.json");
}

bool SaveScan(const Scan& scan, const std::string& path, std::wstring& note) {
    std::string reason;
    const auto text = WriteScan(scan, reason);
    if (text) return SaveText(*text, path, note);
    note = Text(IDS_NOT_SAVED, {ToWide(reason), ToWide(path)});
    return false;
}

bool SaveText(const std::string& text, const std::string& path, std::wstring& note) {
    std::string reason;
    const bool isSaved = ReplaceFileText(path, text, reason);
    note = isSaved ? Text(IDS_SAVED, {ToWide(path)})
                   : Text(IDS_NOT_SAVED, {ToWide(reason), ToWide(path)});
    return isSaved;
}

}  // namespace vndiscover::host
