// From the messages of a window or dialog to a method of its object. No exception reaches the
// system, whose frames must not be unwound.
//
// The object's class T has two methods:
//   std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
//                          // empty: the system's own handling
//   void OnException() noexcept;  // within the handler of an exception from OnMessage
#pragma once

#include <windows.h>

#include <mutex>
#include <optional>

namespace vndiscover::host {

// The object gets the messages of the window, up to WM_NCDESTROY. It may delete itself in that one.
template <class T>
void Attach(HWND window, T* object) {
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(object));
}

// The system sends these messages on colours, fonts and themes only to top-level windows, which
// forward them to their controls, nested ones included.
inline void ForwardToControls(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_SYSCOLORCHANGE && message != WM_SETTINGCHANGE && message != WM_THEMECHANGED)
        return;
    for (HWND each = GetWindow(window, GW_CHILD); each; each = GetWindow(each, GW_HWNDNEXT)) {
        SendMessageW(each, message, wParam, lParam);
        ForwardToControls(each, message, wParam, lParam);
    }
}

template <class T>
std::optional<LRESULT> Deliver(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    auto* object = reinterpret_cast<T*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!object) return std::nullopt;
    if (message == WM_NCDESTROY) SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    ForwardToControls(window, message, wParam, lParam);
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
    // As a dialog does. Wine asks for it when the letter of a label is pressed.
    if (!result && message == WM_NEXTDLGCTL)
        SetFocus(LOWORD(lParam) ? reinterpret_cast<HWND>(wParam)
                                : GetNextDlgTabItem(window, GetFocus(), wParam != 0));
    return result ? *result : DefWindowProcW(window, message, wParam, lParam);
}

// A window that is never shown, of a class of this name; null if the system refuses it. `parent`:
// HWND_MESSAGE, or null for a top-level window, which gets the messages of the session's end.
template <class T>
HWND MakeHiddenWindow(const wchar_t* name, HWND parent, T* object) {
    WNDCLASSW type = {};
    type.lpfnWndProc = WindowProcedure<T>;
    type.hInstance = GetModuleHandleW(nullptr);
    type.lpszClassName = name;
    {
        // Fails harmlessly if it is already registered. Under Wine it may fail before another
        // thread's registration is complete; that thread's window could be created, this one's not.
        static std::mutex registering;
        const std::lock_guard lock(registering);
        RegisterClassW(&type);
    }
    const HWND window =
        CreateWindowExW(0, name, L"", 0, 0, 0, 0, 0, parent, nullptr, type.hInstance, nullptr);
    if (window) Attach(window, object);
    return window;
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
