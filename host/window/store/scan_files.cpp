#include "window/store/scan_files.h"

#include <shobjidl.h>

#include <stdexcept>

#include "platform/com.h"
#include "platform/saved_file.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

std::string AskPath(HWND owner, unsigned kind, const wchar_t* extension,
                    const std::wstring& proposed, bool isForSaving) {
    OwnedObject<IFileDialog> dialog;
    const HRESULT made =
        CoCreateInstance(isForSaving ? CLSID_FileSaveDialog : CLSID_FileOpenDialog, nullptr,
                         CLSCTX_INPROC_SERVER, IID_IFileDialog, Receive(dialog));
    const std::wstring name = Text(kind), pattern = std::wstring(L"*.") + extension;
    if (FAILED(made)) {
        const std::wstring error = ToWide(ErrorText(static_cast<DWORD>(made)));
        throw std::runtime_error(ToUtf8(Text(IDS_NO_FILE_DIALOG, {name, error})));
    }
    IFileDialog& asking = *dialog.Get();
    const COMDLG_FILTERSPEC type = {name.c_str(), pattern.c_str()};
    FILEOPENDIALOGOPTIONS options = 0;
    asking.GetOptions(&options);
    asking.SetOptions(options | FOS_NOCHANGEDIR | FOS_FORCEFILESYSTEM);
    asking.SetFileTypes(1, &type);
    asking.SetDefaultExtension(extension);  // an older dialog adds only three letters by itself
    asking.SetFileName(proposed.c_str());
    OwnedObject<IShellItem> chosen;
    Owned<ClosedBy<wchar_t*, CoTaskMemFree>> path;
    if (asking.Show(owner) != S_OK || FAILED(asking.GetResult(chosen.Receive())) ||
        FAILED(chosen.Get()->GetDisplayName(SIGDN_FILESYSPATH, path.Receive())))
        return "";
    return ToUtf8(path.Get());
}

std::string RecoveryPath(int number) {
    const std::string folder = ToUtf8(Environment(L"LOCALAPPDATA"));
    return (folder.empty() ? "." : folder) + "\\VnBrowser unsaved " + std::to_string(number) +
           ".json";
}

OwnedFile OpenExclusively(const std::string& path, DWORD disposition) {
    return OwnedFile(CreateFileW(SystemPath(path).c_str(), GENERIC_READ, 0, nullptr, disposition,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace vndiscover::host
