// windows_check.exe [--network] [--report FILE]: checks that this system behaves as VnDiscover.dll,
// beside this program, requires. Needs no lab and no administrator.
//
// Stays on the loopback unless --network is given, which sends datagrams on every adapter. The
// report goes to FILE, by default windows_check.md, or to the temporary folder if that cannot be
// written. Exit code: 0 all as expected, 1 something is different, 2 it could not run.
#include <conio.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "check/rows.h"

namespace check {
namespace {

constexpr char kReport[] = "windows_check.md";
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
    std::string report;  // empty: not given
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
    AdapterRows(report, mayUseNetwork);
    FirewallRows(report);
    WindowRows(report);
    ProgramRows(report, mayUseNetwork);
    FileRows(report);
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

bool WriteText(const std::string& path, const std::string& text) {
    FILE* file = std::fopen(path.c_str(), "w");
    const bool written = file && std::fputs(text.c_str(), file) >= 0;
    return file && std::fclose(file) == 0 && written;
}

// Empty if it can be written nowhere.
std::string WriteReport(const std::string& given, const std::string& text) {
    char folder[MAX_PATH + 1] = {}, whole[MAX_PATH + 1] = {};
    GetTempPathA(sizeof folder, folder);
    std::string path = given.empty() ? kReport : given;
    if (!WriteText(path, text)) {
        path = given.empty() ? std::string(folder) + kReport : "";
        if (path.empty() || !WriteText(path, text)) return "";
    }
    const DWORD size = GetFullPathNameA(path.c_str(), sizeof whole, whole, nullptr);
    return size > 0 && size < sizeof whole ? whole : path;
}

int Run(const Options& options) {
    Report report;
    const std::string system = SystemText();
    std::printf("%s\n", system.c_str());
    AllRows(report, options.mayUseNetwork);

    const std::string path = WriteReport(options.report, report.Text(system));
    if (path.empty()) {
        std::fprintf(stderr, "%s cannot be written\n",
                     options.report.empty() ? kReport : options.report.c_str());
        return 2;
    }
    std::printf("\n%d different. Please send back %s\n", report.Different(), path.c_str());
    return report.Different() == 0 ? 0 : 1;
}

// A console of its own closes with the program, before anybody can read it.
void WaitIfConsoleIsOwn() {
    DWORD process = 0;
    if (GetConsoleProcessList(&process, 1) != 1) return;
    std::printf("\nPress a key to close this window.\n");
    _getch();
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
    check::WaitIfConsoleIsOwn();
    // Not by return: a module whose unloading hangs holds the loader lock, and an ordinary exit
    // waits for that.
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), UINT(result));
    return result;
}
