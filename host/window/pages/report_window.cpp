#include "window/pages/report_window.h"

#include <memory>
#include <optional>

#include "platform/messages.h"
#include "window/controls/dpi.h"
#include "window/controls/kept_focus.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"

namespace vndiscover::host {
namespace {

constexpr UINT kShow = WM_APP + 1;
constexpr wchar_t kType[] = L"VnBrowserReport";

class ReportWindow {
  public:
    HWND Open(HWND owner, const std::wstring& title, std::vector<ReportRow> rows) {
        const int dpi = DpiOf(owner);
        window_ = CreateWindowExW(
            WS_EX_CONTROLPARENT, RegisterType(kType, WindowProcedure<ReportWindow>), title.c_str(),
            WS_OVERLAPPEDWINDOW & ~WS_MINIMIZEBOX, CW_USEDEFAULT, CW_USEDEFAULT, Scaled(820, dpi),
            Scaled(420, dpi), owner, nullptr, GetModuleHandleW(nullptr), nullptr);
        if (!window_) return nullptr;
        list_.Create(window_, IDC_DETAILS, title);
        SetDpi(dpi);
        list_.Show(std::move(rows));
        Attach(window_, this);
        ShowWindow(window_, SW_SHOW);
        SetFocus(list_.Handle());
        return window_;
    }

    std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case WM_SIZE:
                Place();
                return 0;
            case WM_DPICHANGED: {
                const auto* place = reinterpret_cast<const RECT*>(lParam);
                SetWindowPos(window, nullptr, place->left, place->top, place->right - place->left,
                             place->bottom - place->top, SWP_NOZORDER | SWP_NOACTIVATE);
                SetDpi(HIWORD(wParam));
                return 0;
            }
            case WM_ACTIVATE:
            case WM_SETFOCUS:
                focus_.OnMessage(window, message, wParam, list_.Handle());
                return std::nullopt;
            case kShow:
                list_.Show(std::move(*reinterpret_cast<std::vector<ReportRow>*>(lParam)));
                return 0;
            case WM_COMMAND:
                if (LOWORD(wParam) == IDCANCEL) DestroyWindow(window);
                return 0;
            case WM_NCDESTROY:
                delete this;
                return 0;
            default:
                return HandleListMessage(message, wParam, lParam);
        }
    }
    void OnException() noexcept { ShowException(window_, false); }

  private:
    void SetDpi(int dpi) {
        dpi_ = dpi;
        OwnedFont font = MakeMessageFont(dpi);
        SendMessageW(list_.Handle(), WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), TRUE);
        font_ = std::move(font);
        Place();
    }
    void Place() {
        RECT client = {};
        GetClientRect(window_, &client);
        list_.Resize(client, dpi_);
    }

    HWND window_ = nullptr;
    KeptFocus focus_;
    OwnedFont font_;
    int dpi_ = 96;
    FactsList list_;
};

}  // namespace

HWND OpenReport(HWND owner, const std::wstring& title, std::vector<ReportRow> rows) {
    auto report = std::make_unique<ReportWindow>();
    const HWND window = report->Open(owner, title, std::move(rows));
    if (window) static_cast<void>(report.release());  // the window owns it: see WM_NCDESTROY
    return window;
}

void ReplaceReport(HWND window, std::vector<ReportRow> rows) {
    wchar_t type[20] = L"";
    GetClassNameW(window, type, 20);  // the handle may be another window's by now
    if (lstrcmpW(type, kType) == 0) SendMessageW(window, kShow, 0, reinterpret_cast<LPARAM>(&rows));
}

}  // namespace vndiscover::host
