// A DLL with the name of a system library, which writes a file beside itself when it is loaded.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        char path[MAX_PATH + 8] = {};
        GetModuleFileNameA(module, path, MAX_PATH);
        lstrcatA(path, ".loaded");
        CloseHandle(CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    }
    return TRUE;
}
