#include "window/controls/placement.h"

#include <algorithm>
#include <cstdint>

namespace vndiscover::host {
namespace {

// A function of user32.dll; null on a system without it.
template <class Function>
Function* UserFunction(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<uintptr_t>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

int SystemDpi() { return GetDeviceCaps(WindowDc(nullptr).Get(), LOGPIXELSY); }

}  // namespace

int DpiOf(HWND window) {
    const auto get = UserFunction<UINT WINAPI(HWND)>("GetDpiForWindow");  // since Windows 10
    const UINT dpi = get ? get(window) : 0;
    return dpi != 0 ? static_cast<int>(dpi) : SystemDpi();
}

void DisableSystemScaling(HWND dialog) {
    constexpr int kAll = 1;  // DDC_DISABLE_ALL
    if (const auto set = UserFunction<BOOL WINAPI(HWND, int, int)>("SetDialogDpiChangeBehavior"))
        set(dialog, kAll, kAll);
}

OwnedFont MakeMessageFont(int dpi) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    metrics.lfMessageFont.lfHeight = MulDiv(metrics.lfMessageFont.lfHeight, dpi, SystemDpi());
    return OwnedFont(CreateFontIndirectW(&metrics.lfMessageFont));
}

int FitField(HWND field) {
    const int height = TextSize(field, L"X", DT_SINGLELINE).cy + 6;
    const LRESULT inside = SendMessageW(field, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0);
    // The height inside of a combo box's frame. It is first set to what it is, since Wine reports
    // another height than it then uses.
    for (const bool isFirst : {true, false}) {
        const int missing = height - BoxOf(field).height;
        if (inside > 0 && missing != 0)
            SendMessageW(field, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1),
                         isFirst ? inside : inside + missing);
    }
    return height;
}

SIZE TextSize(HWND control, const std::wstring& text, UINT flags, int width) {
    const WindowDc dc(control);
    const SelectedObject font(dc.Get(),
                              reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT size = {0, 0, width, 0};
    DrawTextW(dc.Get(), text.c_str(), -1, &size, DT_CALCRECT | flags);
    return {size.right, size.bottom};
}

int OpenHeight(HWND control) {
    RECT open = {};
    SendMessageW(control, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&open));
    return open.bottom - open.top;
}

SIZE ClientSize(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
}

Box WorkAreaOf(HWND window) {
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return BoxOf(monitor.rcWork);
}

Box FitInto(const Box& area, Box box) {
    box.width = std::min(box.width, area.width);
    box.height = std::min(box.height, area.height);
    box.x = std::clamp(box.x, area.x, area.x + area.width - box.width);
    box.y = std::clamp(box.y, area.y, area.y + area.height - box.height);
    return box;
}

}  // namespace vndiscover::host
