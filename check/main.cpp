// windows_check.exe [--network] [--report FILE]: checks that this system behaves as VnDiscover.dll,
// beside this program, requires. Needs no lab and no administrator.
//
// Stays on the loopback unless --network is given, which sends datagrams on every adapter. The
// report goes to FILE, by default windows_check.md. Exit code: 0 all as expected, 1 something is
// different, 2 it could not run.
#include <cstdio>
#include <cstring>
#include <utility>

#include "check/rows.h"

namespace check {
namespace {

constexpr char kUsage[] =
    "windows_check [--network] [--report FILE]\n\n"
    "Checks that this system behaves as VnDiscover.dll, beside this program, requires, and "
    "writes\n"
    "a report (windows_check.md) without names and addresses of this computer.\n\n"
    "  --network      also sends into every network that this computer is attached to:\n"
    "                 sweeps, and one datagram for each IPv6 link-local address\n"
    "  --report FILE  writes the report there\n";

struct Options {
    bool mayUseNetwork = false;
    const char* report = "windows_check.md";
    bool areWrong = false;
};

Options OptionsOf(int count, char** words) {
    Options options;
    for (int i = 1; i < count; ++i) {
        if (std::strcmp(words[i], "--network") == 0) {
            options.mayUseNetwork = true;
        } else if (std::strcmp(words[i], "--report") == 0 && i + 1 < count) {
            options.report = words[++i];
        } else {
            options.areWrong = true;
        }
    }
    return options;
}

std::string SystemText() {
    RTL_OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    using GetVersion = LONG(WINAPI*)(RTL_OSVERSIONINFOW*);
    if (const auto get = SystemFunction<GetVersion>(L"ntdll.dll", "RtlGetVersion")) get(&version);
    std::string text = "Windows " + Number(version.dwMajorVersion) + "." +
                       Number(version.dwMinorVersion) + "." + Number(version.dwBuildNumber);
    using GetWine = const char*(__cdecl*)();
    if (const auto get = SystemFunction<GetWine>(L"ntdll.dll", "wine_get_version")) {
        text += ", that is Wine " + std::string(get());
    }
    return text;
}

void ModuleRows(Report& report, const Module& module) {
    report.Section("The module");
    report.Add(
        "VnDiscover.dll beside this program", "loads (0)",
        module.Error() == 0 ? "loads (0)" : "does not load (" + Number(module.Error()) + ")");
    report.Add("exports that it lacks", "none",
               module.Missing().empty() ? "none" : module.Missing());
}

void AllRows(Report& report, bool mayUseNetwork) {
    SocketRows(report, mayUseNetwork);
    CryptoRows(report);
    static Module module;  // never destroyed: see main
    ModuleRows(report, module);
    if (!module.IsUsable()) return;
    auto closedPort = AskClosedPort(module);
    if (mayUseNetwork) NetworkRows(report, module);
    RequestRows(report, module, std::move(closedPort));
    SystemRows(report, module);
    DiscoveryRows(report, module);
    LoadingRows(report, module);
}

int Run(const Options& options) {
    Report report;
    const std::string system = SystemText();
    std::printf("%s\n", system.c_str());
    AllRows(report, options.mayUseNetwork);

    FILE* file = std::fopen(options.report, "w");
    const bool written = file && std::fputs(report.Text(system).c_str(), file) >= 0;
    if (!file || std::fclose(file) != 0 || !written) {
        std::fprintf(stderr, "%s cannot be written\n", options.report);
        return 2;
    }
    std::printf("\n%d different. Please send back %s\n", report.Different(), options.report);
    return report.Different() == 0 ? 0 : 1;
}

}  // namespace
}  // namespace check

int main(int count, char** words) {
    const check::Options options = check::OptionsOf(count, words);
    if (options.areWrong) {
        std::fputs(check::kUsage, stderr);
        return 2;
    }
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) return 2;
    const int result = check::Run(options);
    // Not by return: a module whose unloading hangs holds the loader lock, and an ordinary exit
    // waits for that.
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), UINT(result));
    return result;
}
