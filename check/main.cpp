// windows_check.exe [--network] [--report FILE]: checks that this system behaves as VnDiscover.dll,
// beside this program, requires. Needs no lab and no administrator.
//
// Stays on the loopback unless --network is given, which sends datagrams on every adapter. The
// report goes to FILE, by default windows_check.md, or to the temporary folder if that cannot be
// written. Exit code: 0 all as expected, 1 something is different, 2 it could not run.
#include <conio.h>

#include <cstdio>
#include <cwchar>
#include <string>
#include <utility>

#include "check/rows.h"

namespace check {
namespace {

constexpr wchar_t kReport[] = L"windows_check.md";
constexpr char kUsage[] =
    "windows_check [--network] [--report FILE]\n\n"
    "Checks that this system behaves as VnDiscover.dll, beside this program, requires, and "
    "writes\n"
    "a report (windows_check.md) without names and addresses of this computer.\n\n"
    "  --network      also sends into every network that this computer is attached to:\n"
    "                 sweeps, a few datagrams from each address, and an echo request to\n"
    "                 an address that nobody has\n"
    "  --report FILE  writes the report there\n";

struct Options {
    bool mayUseNetwork = false;
    std::wstring report;  // empty: not given
    bool areWrong = false;
};

Options OptionsOf(int count, wchar_t** words) {
    Options options;
    for (int i = 1; i < count; ++i) {
        if (std::wcscmp(words[i], L"--network") == 0) {
            options.mayUseNetwork = true;
        } else if (std::wcscmp(words[i], L"--report") == 0 && i + 1 < count) {
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

void RowsOf(Report& report, Module& module, bool mayUseNetwork) {
    auto closedPort = AskClosedPort(module);
    if (mayUseNetwork) NetworkRows(report, module);
    RequestRows(report, module, std::move(closedPort));
    SystemRows(report, module);
    DiscoveryRows(report, module);
    LoadingRows(report, module);
}

void AllRows(Report& report, bool mayUseNetwork) {
    const int rules = FirewallRows(report);
    SocketRows(report, mayUseNetwork);
    AdapterRows(report, mayUseNetwork);
    WindowRows(report);
    ProgramRows(report, mayUseNetwork);
    FileRows(report);
    CryptoRows(report);
    static Module module;  // never destroyed: see main
    ModuleRows(report, module);
    if (module.IsUsable()) RowsOf(report, module, mayUseNetwork);
    // The rows before this one have listened, for which there may be a new rule.
    RuleRow(report, rules);
}

bool WriteText(const std::wstring& path, const std::string& text) {
    FILE* file = _wfopen(path.c_str(), L"w");
    const bool written = file && std::fputs(text.c_str(), file) >= 0;
    return file && std::fclose(file) == 0 && written;
}

// Empty if it can be written nowhere.
std::wstring WriteReport(const std::wstring& given, const std::string& text) {
    constexpr DWORD kRoom = 32768;
    wchar_t folder[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH + 1, folder);
    std::wstring path = given.empty() ? kReport : given, whole(kRoom, L'\0');
    if (!WriteText(path, text)) {
        path = given.empty() ? std::wstring(folder) + kReport : L"";
        if (path.empty() || !WriteText(path, text)) return L"";
    }
    whole.resize(GetFullPathNameW(path.c_str(), kRoom, whole.data(), nullptr));
    return whole.empty() ? path : whole;
}

// For the console.
std::string Shown(const std::wstring& path) {
    std::string text(path.size() * 4, '\0');
    text.resize(size_t(WideCharToMultiByte(GetConsoleOutputCP(), 0, path.data(), int(path.size()),
                                           text.data(), int(text.size()), nullptr, nullptr)));
    return text;
}

int Run(const Options& options) {
    Report report;
    const std::string system = SystemText();
    std::printf("%s\n", system.c_str());
    AllRows(report, options.mayUseNetwork);

    const std::wstring path = WriteReport(options.report, report.Text(system));
    if (path.empty()) {
        std::fprintf(stderr, "%s cannot be written\n",
                     Shown(options.report.empty() ? kReport : options.report).c_str());
        return 2;
    }
    std::printf("\n%d different. Please send back %s\n", report.Different(), Shown(path).c_str());
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

int wmain(int count, wchar_t** words) {
    const check::Options options = check::OptionsOf(count, words);
    if (options.areWrong) {
        std::fputs(check::kUsage, stderr);
        check::WaitIfConsoleIsOwn();
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
