#include "window/controls/placement.h"

#include <cstdint>

namespace vndiscover::host {
namespace {

// Available since Windows 10; otherwise null.
template <class Function>
Function Find(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<uintptr_t>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

int SystemDpi() { return GetDeviceCaps(WindowDc(nullptr).Get(), LOGPIXELSY); }

}  // namespace

int DpiOf(HWND window) {
    const auto get = Find<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    const UINT dpi = get ? get(window) : 0;
    return dpi != 0 ? static_cast<int>(dpi) : SystemDpi();
}

int ScrollBarWidth(int dpi) {
    const auto get = Find<int(WINAPI*)(int, UINT)>("GetSystemMetricsForDpi");
    return get ? get(SM_CXVSCROLL, static_cast<UINT>(dpi))
               : MulDiv(GetSystemMetrics(SM_CXVSCROLL), dpi, SystemDpi());
}

OwnedFont MakeMessageFont(int dpi) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    metrics.lfMessageFont.lfHeight = MulDiv(metrics.lfMessageFont.lfHeight, dpi, SystemDpi());
    return OwnedFont(CreateFontIndirectW(&metrics.lfMessageFont));
}

}  // namespace vndiscover::host
