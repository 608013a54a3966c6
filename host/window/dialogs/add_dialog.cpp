#include "window/dialogs/add_dialog.h"

#include <optional>
#include <utility>

#include "platform/messages.h"
#include "platform/saved_file.h"
#include "platform/wide_text.h"
#include "values/text.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/store/scan_files.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr size_t kMaxHosts = 1000;
constexpr size_t kMaxFileSize = size_t{256} * 1024;

class AddDialog {
  public:
    std::optional<LRESULT> OnMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
        if (message == WM_INITDIALOG) {
            dialog_ = dialog;
            ChangeTexts(dialog);
            CentreOnOwner(dialog);
            return TRUE;
        }
        if (message != WM_COMMAND) return std::nullopt;
        if (LOWORD(wParam) == IDC_ADD_FILE) ReadFile();
        if (LOWORD(wParam) == IDOK) Finish();
        if (LOWORD(wParam) == IDCANCEL) EndDialog(dialog_, FALSE);
        return 0;
    }
    void OnException() noexcept { ShowException(dialog_, false); }
    std::vector<std::string> hosts;

  private:
    void ReadFile() const {
        const std::string path = AskPath(dialog_, IDS_TEXT_FILES, L"txt", L"", false);
        if (path.empty()) return;
        std::string problem;
        const auto text = ReadFileText(path, kMaxFileSize, problem);
        if (!text)
            return ShowProblem(dialog_, Text(IDS_NOT_READ, {ToWide(problem), ToWide(path)}), false);
        SetDlgItemTextW(dialog_, IDC_ADD_HOSTS, EditText(*text).c_str());
    }

    void Finish() {
        const std::wstring text = WindowText(GetDlgItem(dialog_, IDC_ADD_HOSTS));
        hosts = SplitText(ToUtf8(text), ",; \t\r\n");
        if (hosts.size() <= kMaxHosts) return void(EndDialog(dialog_, TRUE));
        const std::wstring count = Grouped(hosts.size());
        ShowProblem(dialog_, Text(IDS_TOO_MANY_HOSTS, {Grouped(kMaxHosts), count}), false);
        hosts.clear();
        SetFocus(GetDlgItem(dialog_, IDC_ADD_HOSTS));
    }

    HWND dialog_ = nullptr;
};

}  // namespace

std::vector<std::string> AskHosts(HWND owner) {
    AddDialog dialog;
    DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_ADD), owner,
                    DialogProcedure<AddDialog>, reinterpret_cast<LPARAM>(&dialog));
    return std::move(dialog.hosts);
}

}  // namespace vndiscover::host
