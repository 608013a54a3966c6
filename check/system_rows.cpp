// The echo, and the formatting of log lines.
#include "check/windows_headers.h"

#include <iphlpapi.h>

#include <icmpapi.h>

#include <cstring>

#include "check/agent.h"
#include "check/rows.h"

namespace check {
namespace {

constexpr DWORD kEchoWaitMs = 2000;

void EchoRows(Report& report, const Module& module) {
    const auto open = SystemFunction<decltype(&IcmpCreateFile)>(L"ICMP.DLL", "IcmpCreateFile");
    const auto send = SystemFunction<decltype(&IcmpSendEcho)>(L"ICMP.DLL", "IcmpSendEcho");
    const auto close = SystemFunction<decltype(&IcmpCloseHandle)>(L"ICMP.DLL", "IcmpCloseHandle");
    const std::string name = "an echo of 8 bytes into a buffer of 48";
    if (!open || !send || !close) {
        report.Add(name, "1 reply, status 0", "ICMP.DLL lacks a function");
    } else {
        char data[] = "Data Buf";
        char reply[48] = {};
        const HANDLE handle = open();
        const DWORD replies = send(handle, LoopbackAddress("127.0.0.1", 0).sin_addr.s_addr, data, 8,
                                   nullptr, reply, sizeof reply, kEchoWaitMs);
        const DWORD error = GetLastError();
        close(handle);
        report.Add(name, "1 reply, status 0",
                   replies == 0 ? "no reply, error " + Number(error)
                                : Number(replies) + " reply, status " +
                                      Number(reinterpret_cast<ICMP_ECHO_REPLY*>(reply)->Status));
    }
    report.Add("VxPing of 127.0.0.1", "1", Number(module.VxPing("127.0.0.1", kEchoWaitMs)));
    report.Add("IsIPv6Supported", "1", Number(module.IsIPv6Supported()));
}

void Echo6Rows(Report& report, const Module& module) {
    using Send = DWORD(WINAPI*)(HANDLE, HANDLE, void*, void*, sockaddr_in6*, sockaddr_in6*, void*,
                                WORD, IP_OPTION_INFORMATION*, void*, DWORD, DWORD);
    const auto open = SystemFunction<HANDLE(WINAPI*)()>(L"IPHLPAPI.DLL", "Icmp6CreateFile");
    const auto send = SystemFunction<Send>(L"IPHLPAPI.DLL", "Icmp6SendEcho2");
    const HANDLE handle = open ? open() : INVALID_HANDLE_VALUE;
    const std::string name = "an IPv6 echo without data";
    if (!send || handle == INVALID_HANDLE_VALUE) {
        report.NotSeen(name, "1 reply", "this system has no IPv6 echo");
        report.NotSeen("VxPing of ::1", "1", "this system has no IPv6 echo");
        return;
    }
    sockaddr_in6 any = {}, self = {};
    any.sin6_family = self.sin6_family = AF_INET6;
    self.sin6_addr.s6_addr[15] = 1;
    IP_OPTION_INFORMATION options = {};
    options.Ttl = 255;
    char reply[1072], nothing[1];
    const DWORD replies = send(handle, nullptr, nullptr, nullptr, &any, &self, nothing, 0, &options,
                               reply, sizeof reply, kEchoWaitMs);
    report.Add(name, "1 reply", Number(replies) + " reply");
    report.Add("VxPing of ::1", "1", Number(module.VxPing("::1", kEchoWaitMs)));
    IcmpCloseHandle(handle);
}

// Calls wvsprintfA, which takes its arguments as a list.
int Formatted(char* line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = wvsprintfA(line, format, arguments);
    va_end(arguments);
    return length;
}

void OriginRow(Report& report) {
    wchar_t folder[MAX_PATH] = {}, path[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    GetModuleFileNameW(LoadLibraryW(L"ICMP.DLL"), path, MAX_PATH);
    report.Add("where ICMP.DLL comes from", "the system's folder",
               path[0] == 0                                   ? "nowhere"
               : _wcsnicmp(path, folder, wcslen(folder)) == 0 ? "the system's folder"
                                                              : "another folder");
}

void FormatRows(Report& report) {
    char line[4096] = {};
    const std::string text(2000, 'x');
    const auto row = [&](const char* name, const char* expected, int length) {
        report.Add(name, expected,
                   Number(length) + " returned, " + Number(int64_t(strlen(line))) + " written");
    };
    row("wvsprintfA of 1,024 characters", "1024 returned, 1024 written",
        Formatted(line, "%s", text.substr(0, 1024).c_str()));
    row("wvsprintfA of 2,000 characters", "1024 returned, 1024 written",
        Formatted(line, "%s", text.c_str()));
}

}  // namespace

void SystemRows(Report& report, const Module& module) {
    report.Section("Echo and formatting");
    OriginRow(report);
    EchoRows(report, module);
    Echo6Rows(report, module);
    FormatRows(report);
}

}  // namespace check
