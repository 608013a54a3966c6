#include "window/controls/dpi.h"

#include <cstdint>

namespace vndiscover::host {
namespace {

int SystemDpi() { return GetDeviceCaps(WindowDc(nullptr).Get(), LOGPIXELSY); }

}  // namespace

int DpiOf(HWND window) {
    // Available since Windows 10.
    using GetDpi = UINT(WINAPI*)(HWND);
    const auto get = reinterpret_cast<GetDpi>(reinterpret_cast<uintptr_t>(
        GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    const UINT dpi = get ? get(window) : 0;
    return dpi != 0 ? static_cast<int>(dpi) : SystemDpi();
}

OwnedFont MakeMessageFont(int dpi) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    metrics.lfMessageFont.lfHeight = MulDiv(metrics.lfMessageFont.lfHeight, dpi, SystemDpi());
    return OwnedFont(CreateFontIndirectW(&metrics.lfMessageFont));
}

}  // namespace vndiscover::host
