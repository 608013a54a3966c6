// From the messages of a window or dialog to a method of its object. No exception reaches the
// system, whose frames must not be unwound.
//
// The object's class T has two methods:
//   std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
//                          // empty: the system's own handling
//   void OnException() noexcept;  // within the handler of an exception from OnMessage
#pragma once

#include <windows.h>

#include <optional>

namespace vndiscover::host {

// The object gets the messages of the window until WM_NCDESTROY. It may delete itself in that one.
template <class T>
void Attach(HWND window, T* object) {
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(object));
}

// The system tells only windows at the top of new colours, fonts and themes. Theirs tell controls,
// those inside of others too.
inline void TellControls(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_SYSCOLORCHANGE && message != WM_SETTINGCHANGE && message != WM_THEMECHANGED)
        return;
    for (HWND each = GetWindow(window, GW_CHILD); each; each = GetWindow(each, GW_HWNDNEXT)) {
        SendMessageW(each, message, wParam, lParam);
        TellControls(each, message, wParam, lParam);
    }
}

template <class T>
std::optional<LRESULT> Deliver(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    auto* object = reinterpret_cast<T*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!object) return std::nullopt;
    if (message == WM_NCDESTROY) SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    TellControls(window, message, wParam, lParam);
    try {
        return object->OnMessage(window, message, wParam, lParam);
    } catch (...) {
        object->OnException();
    }
    return 0;
}

template <class T>
LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto result = Deliver<T>(window, message, wParam, lParam);
    return result ? *result : DefWindowProcW(window, message, wParam, lParam);
}

// For the functions that make a dialog, with the object as their last parameter.
template <class T>
INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) Attach(dialog, reinterpret_cast<T*>(lParam));
    const auto result = Deliver<T>(dialog, message, wParam, lParam);
    if (result) SetWindowLongPtrW(dialog, DWLP_MSGRESULT, *result);
    return result ? TRUE : FALSE;
}

}  // namespace vndiscover::host
