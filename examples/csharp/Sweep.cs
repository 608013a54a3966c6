// Prints what the devices on every network of this computer answer: address, tab, value. Exit code: 0 if any did.
//
//     csc Sweep.cs VnDiscover.cs          .NET Framework 4.5 or later; or both files in a console project of .NET 6 or later
//     Sweep.exe public                    the community; without one, the DLL's own
//
// VnDiscover.dll must lie beside the program, and the process must be a 64-bit one (-platform:x64).
using System;
using System.Runtime.InteropServices;

public static class Sweep
{
    private delegate IntPtr WindowProcedure(IntPtr window, uint message, IntPtr address, IntPtr value);

    private static readonly IntPtr MessageOnly = new IntPtr(-3);  // HWND_MESSAGE: the window is never seen
    private const int WindowProcedureIndex = -4;                  // GWLP_WNDPROC
    // Kept from the garbage collector as long as the window may call it.
    private static readonly WindowProcedure Procedure = OnMessage;
    private static int devices;

    [DllImport("user32.dll", CharSet = CharSet.Unicode)]
    private static extern IntPtr CreateWindowExW(uint exStyle, string className, string title, uint style, int x, int y,
        int width, int height, IntPtr parent, IntPtr menu, IntPtr instance, IntPtr parameter);

    [DllImport("user32.dll")]
    private static extern IntPtr SetWindowLongPtrW(IntPtr window, int index, WindowProcedure value);

    [DllImport("user32.dll")]
    private static extern IntPtr DefWindowProcW(IntPtr window, uint message, IntPtr wParam, IntPtr lParam);

    // No exception may leave it: the DLL is on the stack.
    private static IntPtr OnMessage(IntPtr window, uint message, IntPtr address, IntPtr value)
    {
        if (message != VnDiscover.WM_APP) return DefWindowProcW(window, message, address, value);
        if (address == IntPtr.Zero) return IntPtr.Zero;  // the end of the sweep
        ++devices;
        Console.WriteLine(Marshal.PtrToStringAnsi(address) + "\t" + Marshal.PtrToStringAnsi(value));
        return IntPtr.Zero;
    }

    public static int Main(string[] arguments)
    {
        IntPtr window = CreateWindowExW(0, "STATIC", "", 0, 0, 0, 0, 0, MessageOnly, IntPtr.Zero, IntPtr.Zero, IntPtr.Zero);
        SetWindowLongPtrW(window, WindowProcedureIndex, Procedure);
        // The window is of this thread, so its procedure is called during the sweep, which blocks.
        VnDiscover.DiscoverSnmp(window, VnDiscover.WM_APP, 0, 0, arguments.Length > 0 ? arguments[0] : null, null);
        return devices > 0 ? 0 : 1;
    }
}
