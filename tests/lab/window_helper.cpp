// Gives the tests of VnBrowser.exe in a lab access to its code.
//
//   window_helper texts FOLDER    writes the texts of some calls as NAME.cpp, NAME.cs and
//                                 NAME.command, and the declarations that they use as shapes.txt
//   window_helper command FILE    runs a command line like a shell, which replaces %VARIABLES%
//   window_helper diagnose HOST   prints the outcome of each step, the verdict and the calls, with
//                                 the lab's user if there are passwords
//   window_helper read HOST       prints the interfaces, a walk through their names, and the walks
//                                 of its calls
//   window_helper profile NAME    saves the lab's SNMPv3 user, with passwords from the environment
#include <windows.h>

#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "model/computer/computer_report.h"
#include "model/printer/printer_facts.h"
#include "platform/saved_file.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/module_types.h"
#include "values/object_names.h"
#include "window/store/settings.h"
#include "window/work/engine.h"
#include "wsd/wsd_message.h"

namespace vndiscover::host {
namespace {

Security User() {
    Security user;
    user.user = L"admin";
    user.authLabel = L"SHA-2(256)";
    user.privLabel = L"AES";
    user.authPassword = Secret(Environment(L"VNDISCOVER_AUTH_PASS"));
    user.privPassword = Secret(Environment(L"VNDISCOVER_PRIV_PASS"));
    return user;
}

void Write(const std::string& path, const std::string& text) {
    FILE* file = _wfopen(ToWide(path).c_str(), L"wb");
    if (!file) return;
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

void WriteCall(const std::string& path, const Call& call) {
    Write(path + ".cpp", CallText(call, CallLanguage::kCpp) + "\n");
    Write(path + ".cs", CallText(call, CallLanguage::kCSharp) + "\n");
    Write(path + ".command", CallText(call, CallLanguage::kCommand));
}

void WriteTexts(const std::string& folder) {
    SweepStep step;
    step.oid = *ParseOidOrName("sysName.0");
    step.login.community = ToUtf8(Environment(L"VNDISCOVER_COMMUNITY"));
    WriteCall(folder + "sweep_v1", CallOf(step, ""));
    step.useIPv6 = true;
    WriteCall(folder + "sweep_ipv6", CallOf(step, ""));
    AskTarget target = {"10.77.1.2", step.login};
    WriteCall(folder + "ask_v1", CallOf(target, *ParseOidOrName("sysContact")));
    step.login.security = target.login.security = std::make_shared<const Security>(User());
    WriteCall(folder + "ask_v3", CallOf(target, *ParseOidOrName("sysContact")));
    step.useIPv6 = false;
    step.kind = SweepKind::kSnmpV3;
    WriteCall(folder + "sweep_v3_name", CallOf(step, ""));
    step.oid = *ParseOidOrName(kDefaultDiscoveryOid);
    WriteCall(folder + "sweep_v3", CallOf(step, ""));
    step.kind = SweepKind::kWsd;
    WriteCall(folder + "wsd", CallOf(step, BuildProbe("wsdp:Device", NewUuid())));
    WriteCall(folder + "ping", PingOf("10.77.1.2"));
    Call stop;
    stop.name = "StopDiscoverSoap";
    WriteCall(folder + "stop", stop);
    std::string shapes;
    for (const ExportShape& shape : kCallShapes)
        shapes += std::string(shape.result) + " " + shape.name + "(" + shape.parameters + ")\n";
    Write(folder + "shapes.txt", shapes);
}

int Failed(const std::string& problem) {
    std::fprintf(stderr, "window_helper: %s\n", problem.c_str());
    return 1;
}

AskTarget TargetOf(const std::string& host) {
    AskTarget target = {host};
    if (!Environment(L"VNDISCOVER_AUTH_PASS").empty())
        target.login.security = std::make_shared<const Security>(User());
    return target;
}

void Read(const std::string& host) {
    AskTarget target = TargetOf(host);
    const auto engine = MakeModuleEngine();
    const PrinterFacts facts = FactsOf(engine->Read(target, nullptr));
    for (const Interface& one : facts.interfaces) std::printf("%s\n", one.description.c_str());
    std::string calls;
    engine->SetOnCall([&](const Call& call) { calls += std::to_string(call.walk) + call.name; });
    const auto print = [](const Answer& one) {
        const std::string value = FormatNamedValue(one.oid, one.type, one.bytes);
        return std::printf("%s = %s\n", OidToText(one.oid).c_str(), value.c_str()) > 0;
    };
    engine->Walk(target, *ParseOidOrName("ifDescr"), nullptr, print);
    std::printf("%s\n", calls.c_str());
}

void Diagnose(const std::string& host) {
    const AskTarget target = TargetOf(host);
    const auto engine = MakeModuleEngine();
    std::string calls;
    engine->SetOnCall([&](const Call& call) { calls += call.name + "\n"; });
    const HostDiagnosis diagnosis = engine->Diagnose(target, [] { return true; });
    for (const StepResult& step :
         {diagnosis.ping, diagnosis.v1, diagnosis.discovery, diagnosis.user})
        std::printf("%s\n", StepText(step).c_str());
    std::printf("%s\n%s", VerdictOn(diagnosis).c_str(), calls.c_str());
}

// The exit code of the program, which the system itself finds and hands the words to.
int Start(wchar_t* line) {
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process;
    if (!CreateProcessW(nullptr, line, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                        &process))
        return Failed("not started, error " + std::to_string(GetLastError()));
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}

int RunCommand(const std::string& path) {
    std::string problem;
    const auto text = ReadFileText(path, MAX_PATH * 4, problem);
    if (!text) return Failed(problem);
    wchar_t line[8192];
    constexpr DWORD kLineSize = static_cast<DWORD>(std::size(line));
    const DWORD size = ExpandEnvironmentStringsW(ToWide(*text).c_str(), line, kLineSize);
    if (size == 0 || size > kLineSize) return Failed("the line is too long");
    return Start(line);
}

}  // namespace
}  // namespace vndiscover::host

int main() {
    using namespace vndiscover::host;
    const auto words = CommandLineArguments();
    if (words.size() != 2) return 2;
    if (words[0] == "texts") WriteTexts(words[1] + "\\");
    if (words[0] == "read") Read(words[1]);
    if (words[0] == "diagnose") Diagnose(words[1]);
    if (words[0] == "command") return RunCommand(words[1]);
    if (words[0] == "profile" && SaveProfile(ToWide(words[1]), User()) != SaveResult::kSaved)
        return 1;
    return 0;
}
