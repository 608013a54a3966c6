/* Finds the printers on every network that this computer is attached to, and prints one line each.
 *
 *     sweep [COMMUNITY]
 *
 * The window is message-only and belongs to the thread that sweeps, so the sweep calls OnMessage
 * directly and no message loop is needed. A program with a visible window should sweep on another
 * thread: see ../cpp/worker_sweep.cpp.
 */
#include <stdio.h>

#include <vndiscover.h>

#define WM_DEVICE (WM_APP + 1)

static int devices;

static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    /* Both texts belong to the module and are valid only until this function returns. */
    const char* address = (const char*)wParam;
    const char* value = (const char*)lParam;
    if (message != WM_DEVICE) return DefWindowProcA(window, message, wParam, lParam);
    if (address == NULL) {
        printf("end of the sweep\n");
    } else {
        ++devices;
        printf("%s\t%s\n", address, value);
    }
    return 0;
}

int main(int argc, char** argv) {
    const char* community = argc > 1 ? argv[1] : NULL; /* NULL: VN_DEFAULT_COMMUNITY */
    WNDCLASSA windowClass = {0};
    HWND window;

    windowClass.lpfnWndProc = OnMessage;
    windowClass.hInstance = GetModuleHandleA(NULL);
    windowClass.lpszClassName = "VnDiscoverSweep";
    RegisterClassA(&windowClass);
    window = CreateWindowExA(0, windowClass.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, NULL,
                             windowClass.hInstance, NULL);
    if (window == NULL) {
        fprintf(stderr, "no window: error %lu\n", GetLastError());
        return 2;
    }

    /* Takes two seconds per network, or up to a minute if answers keep coming. */
    DiscoverSnmp(window, WM_DEVICE, 0, 0, community, NULL);
    DestroyWindow(window);
    printf("%d answers\n", devices);
    return devices > 0 ? 0 : 1;
}
