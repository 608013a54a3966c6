// VnDiscover.dll for .NET (Framework 4.5 or later, .NET 6 or later; 64-bit processes). vndiscover.h explains each
// function; arguments have the same names here.
//
// The result message of a sweep, in the window procedure of a Form, NativeWindow or HwndSource:
//
//     if (m.Msg == VnDiscover.WM_APP) {
//         if (m.WParam == IntPtr.Zero) { /* the end; sweeps over SNMPv3 send none */ }
//         else {
//             string address = Marshal.PtrToStringAnsi(m.WParam);  // copied: both texts are valid only now
//             string value = Marshal.PtrToStringAnsi(m.LParam);    // JSON mode: UTF-8; WS-Discovery: bytes
//         }
//     }
//
// Sweeps block: run them with Task.Run, so that the window's thread can handle messages. To stop one, call
// StopDiscoverSnmp or StopDiscoverSoap and keep pumping messages; never wait for the task on the window's thread.
using System;
using System.Runtime.InteropServices;

public static class VnDiscover
{
    private const string Dll = "VnDiscover.dll";
    // Not from the current folder: an installer runs from a download folder, where anybody may have put a DLL.
    private const DllImportSearchPath BesideTheHost = DllImportSearchPath.AssemblyDirectory;

    public const uint WM_APP = 0x8000;  // can be used for the result message

    public const string VN_DEFAULT_DISCOVERY_OID = ".1.3.6.1.4.1.5963.43.5.1.1.1.1";
    public const string VN_DEFAULT_COMMUNITY = "sesame";

    public const uint VN_TYPE_INTEGER = 2;
    public const uint VN_TYPE_OCTET_STRING = 4;
    public const uint VN_TYPE_NULL = 5;
    public const uint VN_TYPE_OBJECT_IDENTIFIER = 6;
    public const uint VN_TYPE_IP_ADDRESS = 0x40;
    public const uint VN_TYPE_COUNTER32 = 0x41;
    public const uint VN_TYPE_GAUGE32 = 0x42;
    public const uint VN_TYPE_TIME_TICKS = 0x43;
    public const uint VN_TYPE_OPAQUE = 0x44;
    public const uint VN_TYPE_COUNTER64 = 0x46;

    public const string VN_AUTH_MD5 = "MD5";
    public const string VN_AUTH_SHA1 = "SHA1";
    public const string VN_AUTH_SHA224 = "SHA-2(224)";
    public const string VN_AUTH_SHA256 = "SHA-2(256)";
    public const string VN_AUTH_SHA384 = "SHA-2(384)";
    public const string VN_AUTH_SHA512 = "SHA-2(512)";
    public const string VN_PRIV_DES = "DES";
    public const string VN_PRIV_AES = "AES";

    public const int VN_ADDRESS_SIZE = 48;
    public const int VN_VALUE_SIZE = 4096;
    public const int VN_OID_SIZE = 128;
    public const int VN_INFORMATION_SIZE = 260;
    public const int VN_REQUEST_VALUE_SIZE = 256;
    public const int VN_JSON_REQUEST_SIZE = 2048;
    public const int VN_SOAP_REPLY_SIZE = 2048;
    public const int VN_SOAP_PROBE_MAX = 2048;
    public const int VN_COMMUNITY_MAX = 255;
    public const int VN_REQUEST_OID_MAX = 124;
    public const int VN_USER_NAME_MAX = 127;
    public const int VN_TEXT_MAX = 259;

    // A new record is all zeros, as GetNextSnmpRequestV3 requires.
    [StructLayout(LayoutKind.Sequential, Pack = 2)]
    public struct VnResponseRecord
    {
        public ushort valueType;
        public ushort valueLength;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = VN_ADDRESS_SIZE)] public byte[] address;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = VN_VALUE_SIZE)] public byte[] value;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = VN_OID_SIZE)] public byte[] oid;
        public ushort oidLength;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 34)] public byte[] reserved;
    }

    // ---------------------------------------------------------------- discovery over SNMPv1

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int DiscoverDevices(
        IntPtr hWnd, uint uMsg, uint timeout, byte useIPv6,
        [MarshalAs(UnmanagedType.LPWStr)] string resultPath,
        [MarshalAs(UnmanagedType.LPWStr)] string readCommunity,
        [MarshalAs(UnmanagedType.LPWStr)] string writeCommunity);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int DiscoverDevicesByOID(
        IntPtr hWnd, uint uMsg, uint timeout, byte useIPv6,
        [MarshalAs(UnmanagedType.LPWStr)] string oid,
        [MarshalAs(UnmanagedType.LPWStr)] string resultPath,
        [MarshalAs(UnmanagedType.LPWStr)] string readCommunity,
        [MarshalAs(UnmanagedType.LPWStr)] string writeCommunity);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int DiscoverDevicesByOIDjson(
        IntPtr hWnd, uint uMsg, uint timeout, byte useIPv6,
        [MarshalAs(UnmanagedType.LPWStr)] string jsonRequest,
        [MarshalAs(UnmanagedType.LPWStr)] string resultPath,
        [MarshalAs(UnmanagedType.LPWStr)] string readCommunity,
        [MarshalAs(UnmanagedType.LPWStr)] string writeCommunity);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int DiscoverSnmp(
        IntPtr hWnd, uint uMsg, uint timeout, byte useIPv6,
        [MarshalAs(UnmanagedType.LPStr)] string readCommunity,
        [MarshalAs(UnmanagedType.LPStr)] string writeCommunity);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int StopDiscoverSnmp();

    // ---------------------------------------------------------------- discovery over SNMPv3

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int DiscoverSnmpV3(
        IntPtr hWnd, uint uMsg, uint timeout, byte useIPv6,
        [MarshalAs(UnmanagedType.LPWStr)] string userName, byte useAuth,
        [MarshalAs(UnmanagedType.LPWStr)] string authPassword, byte usePriv,
        [MarshalAs(UnmanagedType.LPWStr)] string privPassword,
        [MarshalAs(UnmanagedType.LPWStr)] string authProtocol,
        [MarshalAs(UnmanagedType.LPWStr)] string privProtocol);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int DiscoverV3DevicesByOIDjson(
        IntPtr hWnd, uint uMsg, uint timeout, byte useIPv6,
        [MarshalAs(UnmanagedType.LPWStr)] string jsonRequest,
        [MarshalAs(UnmanagedType.LPWStr)] string userName, byte useAuth,
        [MarshalAs(UnmanagedType.LPWStr)] string authPassword, byte usePriv,
        [MarshalAs(UnmanagedType.LPWStr)] string privPassword,
        [MarshalAs(UnmanagedType.LPWStr)] string authProtocol,
        [MarshalAs(UnmanagedType.LPWStr)] string privProtocol);

    // ---------------------------------------------------------------- WS-Discovery

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int DiscoverSoap(
        IntPtr hWnd, uint uMsg, uint timeout, byte[] probe, int probeLength);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int StopDiscoverSoap();

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int DiscoverHttp();

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int DiscoverBonjour();

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int GetBonjourInformation();

    // ---------------------------------------------------------------- directed requests, SNMPv1

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int GetSnmpInformation(
        [MarshalAs(UnmanagedType.LPStr)] string host, [Out] byte[] value,
        [MarshalAs(UnmanagedType.LPStr)] string readCommunity,
        [MarshalAs(UnmanagedType.LPStr)] string writeCommunity);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int GetSnmpRequest(
        [MarshalAs(UnmanagedType.LPStr)] string host, [MarshalAs(UnmanagedType.LPStr)] string oid,
        [Out] byte[] value, int valueSize, uint expectedType, uint timeout, uint retries,
        [MarshalAs(UnmanagedType.LPStr)] string readCommunity,
        [MarshalAs(UnmanagedType.LPStr)] string writeCommunity);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int GetSnmpRequestRaw(
        [MarshalAs(UnmanagedType.LPStr)] string host, [MarshalAs(UnmanagedType.LPStr)] string oid,
        [In, Out] byte[] value, int valueSize, ref uint valueType, uint timeout, uint retries,
        [MarshalAs(UnmanagedType.LPStr)] string readCommunity,
        [MarshalAs(UnmanagedType.LPStr)] string writeCommunity);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int GetNextSnmpRequestRaw(
        [MarshalAs(UnmanagedType.LPStr)] string host, [MarshalAs(UnmanagedType.LPStr)] string oid,
        ref VnResponseRecord record, uint timeout, uint retries,
        [MarshalAs(UnmanagedType.LPStr)] string readCommunity,
        [MarshalAs(UnmanagedType.LPStr)] string writeCommunity);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int SetSnmpRequestRaw(
        [MarshalAs(UnmanagedType.LPStr)] string host, [MarshalAs(UnmanagedType.LPStr)] string oid,
        [In, Out] byte[] value, int valueLength, ref uint valueType, uint timeout, uint retries,
        [MarshalAs(UnmanagedType.LPStr)] string readCommunity,
        [MarshalAs(UnmanagedType.LPStr)] string writeCommunity);

    // ---------------------------------------------------------------- directed requests, SNMPv3

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int GetSnmpRequestV3(
        [MarshalAs(UnmanagedType.LPStr)] string host, [MarshalAs(UnmanagedType.LPStr)] string oid,
        [Out] byte[] value, int valueSize, ref uint valueType, uint timeout, uint retries,
        [MarshalAs(UnmanagedType.LPWStr)] string userName, byte useAuth,
        [MarshalAs(UnmanagedType.LPWStr)] string authPassword, byte usePriv,
        [MarshalAs(UnmanagedType.LPWStr)] string privPassword,
        [MarshalAs(UnmanagedType.LPWStr)] string authProtocol,
        [MarshalAs(UnmanagedType.LPWStr)] string privProtocol);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern int GetNextSnmpRequestV3(
        [MarshalAs(UnmanagedType.LPStr)] string host, [MarshalAs(UnmanagedType.LPStr)] string oid,
        ref VnResponseRecord record, uint timeout, uint retries,
        [MarshalAs(UnmanagedType.LPWStr)] string userName, byte useAuth,
        [MarshalAs(UnmanagedType.LPWStr)] string authPassword, byte usePriv,
        [MarshalAs(UnmanagedType.LPWStr)] string privPassword,
        [MarshalAs(UnmanagedType.LPWStr)] string authProtocol,
        [MarshalAs(UnmanagedType.LPWStr)] string privProtocol);

    // ---------------------------------------------------------------- reachability

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern byte VxPing(
        [MarshalAs(UnmanagedType.LPStr)] string address, uint timeout);

    [DllImport(Dll, ExactSpelling = true), DefaultDllImportSearchPaths(BesideTheHost)]
    public static extern byte IsIPv6Supported();
}
