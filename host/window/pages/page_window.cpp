#include "window/pages/page_window.h"

#include <memory>

#include "window/controls/dpi.h"
#include "window/controls/list_copy.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"

namespace vndiscover::host {
namespace {

constexpr UINT kShow = WM_APP + 1;
constexpr wchar_t kType[] = L"VnBrowserPage";

class Page {
  public:
    ~Page() {
        if (font_) DeleteObject(font_);
    }
    HWND Open(HWND owner, const std::wstring& title, std::vector<Fact> facts) {
        const int dpi = DpiOf(owner);
        window_ = CreateWindowExW(WS_EX_CONTROLPARENT, RegisterType(kType, Procedure),
                                  title.c_str(), WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                                  MulDiv(820, dpi, 96), MulDiv(420, dpi, 96), owner, nullptr,
                                  GetModuleHandleW(nullptr), nullptr);
        if (!window_) return nullptr;
        list_.Create(window_, IDC_DETAILS, title);
        SetDpi(dpi);
        list_.Show(std::move(facts));
        SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ShowWindow(window_, SW_SHOW);
        SetFocus(list_.Handle());
        return window_;
    }

  private:
    void SetDpi(int dpi) {
        dpi_ = dpi;
        const HFONT old = font_;
        font_ = MakeMessageFont(dpi);
        SendMessageW(list_.Handle(), WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
        if (old) DeleteObject(old);
        Place();
    }
    void Place() {
        RECT client = {};
        GetClientRect(window_, &client);
        list_.Resize(client, dpi_);
    }
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* self = reinterpret_cast<Page*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (!self) return DefWindowProcW(window, message, wParam, lParam);
        switch (message) {
            case WM_SIZE:
                self->Place();
                return 0;
            case WM_DPICHANGED: {
                const auto* place = reinterpret_cast<const RECT*>(lParam);
                SetWindowPos(window, nullptr, place->left, place->top, place->right - place->left,
                             place->bottom - place->top, SWP_NOZORDER | SWP_NOACTIVATE);
                self->SetDpi(HIWORD(wParam));
                return 0;
            }
            case WM_NOTIFY:
                return self->list_.OnNotify(reinterpret_cast<NMHDR*>(lParam));
            case kShow:
                self->list_.Show(std::move(*reinterpret_cast<std::vector<Fact>*>(lParam)));
                return 0;
            case WM_CONTEXTMENU:
                if (IsList(reinterpret_cast<HWND>(wParam)))
                    ShowCopyMenu(reinterpret_cast<HWND>(wParam), lParam);
                return 0;
            case WM_COMMAND:
                if (LOWORD(wParam) == IDCANCEL) DestroyWindow(window);
                return 0;
            case WM_NCDESTROY:
                SetWindowLongPtrW(window, GWLP_USERDATA, 0);
                delete self;
                return 0;
            default:
                return DefWindowProcW(window, message, wParam, lParam);
        }
    }

    HWND window_ = nullptr;
    HFONT font_ = nullptr;
    int dpi_ = 96;
    FactsList list_;
};

}  // namespace

HWND OpenPage(HWND owner, const std::wstring& title, std::vector<Fact> facts) {
    auto page = std::make_unique<Page>();
    const HWND window = page->Open(owner, title, std::move(facts));
    if (window) static_cast<void>(page.release());  // the window owns it: see WM_NCDESTROY
    return window;
}

void ShowInPage(HWND page, std::vector<Fact> facts) {
    wchar_t type[20] = L"";
    GetClassNameW(page, type, 20);  // the handle may be another window's by now
    if (lstrcmpW(type, kType) == 0) SendMessageW(page, kShow, 0, reinterpret_cast<LPARAM>(&facts));
}

}  // namespace vndiscover::host
