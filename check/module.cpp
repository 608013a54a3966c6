#include "check/module.h"

#include <cstring>

namespace check {
namespace {

FARPROC WINAPI FindAllButAdapters(HMODULE library, const char* name) {
    if (std::strcmp(name, "GetAdaptersInfo") == 0) return nullptr;
    if (std::strcmp(name, "GetAdaptersAddresses") == 0) return nullptr;
    return GetProcAddress(library, name);
}

}  // namespace

std::wstring BesideProgram(const wchar_t* fileName) {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), DWORD(path.size())));
    return path.substr(0, path.find_last_of(L"\\/") + 1) + fileName;
}

void** ImportSlot(HMODULE module, const char* name) {
    auto* base = reinterpret_cast<BYTE*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* library =
        reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    for (; library->Name != 0; ++library) {
        auto* names = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* entry =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0) {
                return reinterpret_cast<void**>(&slots->u1.Function);
            }
        }
    }
    return nullptr;
}

Module::Module() : handle_(LoadLibraryW(BesideProgram(L"VnDiscover.dll").c_str())) {
    if (!handle_) {
        error_ = GetLastError();
        return;
    }
#define VN_FIND(name)                                             \
    (name) = reinterpret_cast<decltype(&::name)>(                 \
        reinterpret_cast<void*>(GetProcAddress(handle_, #name))); \
    if (!(name)) missing_ += (missing_.empty() ? "" : ", ") + std::string(#name);
    VN_EXPORTS(VN_FIND)
#undef VN_FIND
}

Module::~Module() { Unload(); }

bool Module::Unload() {
    if (handle_) FreeLibrary(handle_);
    handle_ = nullptr;
    return GetModuleHandleW(L"VnDiscover.dll") == nullptr;
}

bool Module::HideAdapters() {
    void** slot = ImportSlot(handle_, "GetProcAddress");
    DWORD protection;
    if (!slot || !VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection)) return false;
    *slot = reinterpret_cast<void*>(FindAllButAdapters);
    return VirtualProtect(slot, sizeof *slot, protection, &protection) != 0;
}

ResultWindow::ResultWindow() {
    static const ATOM type = [] {
        WNDCLASSA window = {};
        window.lpfnWndProc = OnMessage;
        window.lpszClassName = "WindowsCheck";
        window.hInstance = GetModuleHandleW(nullptr);
        return RegisterClassA(&window);
    }();
    window_ = CreateWindowA(MAKEINTATOM(type), "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                            nullptr);
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

ResultWindow::~ResultWindow() { DestroyWindow(window_); }

LRESULT CALLBACK ResultWindow::OnMessage(HWND window, UINT message, WPARAM address, LPARAM value) {
    if (message != kMessage) return DefWindowProcA(window, message, address, value);
    auto* self = reinterpret_cast<ResultWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    const auto* text = reinterpret_cast<const char*>(value);
    const size_t length = text ? strnlen(text, VN_SOAP_REPLY_SIZE) : 0;
    self->results.push_back({address ? reinterpret_cast<const char*>(address) : "",
                             std::string(text ? text : "", length)});
    return 0;
}

}  // namespace check
