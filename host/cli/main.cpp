// vndiscover.exe: VnDiscover.dll on the command line, and an example of a host.
#include <vndiscover.h>

#include <algorithm>

#include "cli/commands.h"
#include "device/ask_process.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

// Shows only types: exclusions would leave too little room for the descriptions.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_option_opts(const CLI::Option* option) const override {
        const bool isShown = !option->get_positional() && option->get_type_size() != 0;
        return isShown ? " " + option->get_type_name() : "";
    }
};

void BuildCommandLine(CLI::App& app, int& exitCode) {
    app.formatter(std::make_shared<HelpFormatter>());
    app.get_formatter()->column_width(26);
    app.allow_windows_style_options(false);  // "/tmp/x" is a path
    app.require_subcommand(1);
    // The version of the loaded DLL is also the program's.
    app.set_version_flag("--version",
                         "VnDiscover " + VersionOf(GetModuleHandleW(L"VnDiscover.dll")));
    AddPrintersCommand(app, exitCode);
    AddSweepCommand(app, exitCode);
    AddDirectedCommands(app, exitCode);
    AddWsdCommand(app, exitCode);
    AddCompareCommand(app, exitCode);
    AddDiagnosisCommands(app, exitCode);
    app.footer("'vndiscover COMMAND --help' shows details and examples.");
}

// What is wrong, the argument first.
std::string Problem(const CLI::App& app, const CLI::ParseError& error) {
    const auto commands = app.get_subcommands();
    const auto unknown = (commands.empty() ? &app : commands.front())->remaining();
    const std::string text = error.what(), conversion = "Could not convert: ";
    if (commands.empty() && unknown.empty()) return "a command is missing";
    if (commands.empty()) return unknown.front() + ": no such command or option";
    if (text.rfind("The following argument", 0) == 0)
        return unknown.front() + ": not expected here";
    return text.rfind(conversion, 0) == 0 ? text.substr(conversion.size()) + ": not a number"
                                          : text;
}

int Run() {
    int exitCode = kWrongUsage;
    CLI::App app(
        "Finds printers and multifunction devices on the network, reads and writes their values.",
        "vndiscover");
    BuildCommandLine(app, exitCode);
    const std::vector<std::string> arguments = CommandLineArguments();
    if (arguments == std::vector<std::string>{kReaderOption}) {
        ServeReader();
        return kFound;
    }
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::Success& help) {  // --help and --version
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        Warn(Problem(app, error));
        const auto chosen = app.get_subcommands();
        Warn("try 'vndiscover " + (chosen.empty() ? "" : chosen.front()->get_name() + " ") +
             "--help'");
        return kWrongUsage;
    }
    return exitCode;
}

int Main() {
    // A device may answer a set request with more bytes than were sent. The C runtime refuses to
    // copy them and calls this handler, whose default ends the process. Set checks the length.
    _set_invalid_parameter_handler(
        [](const wchar_t*, const wchar_t*, const wchar_t*, unsigned, uintptr_t) {});
    const ConsoleSession console;
    try {
        const int exitCode = Run();
        const std::string problem = OutputProblem();
        if (problem.empty()) return exitCode;
        Warn("the output is incomplete" + problem);
        return std::max<int>(exitCode, kNone);
    } catch (...) {
        Warn(ExceptionText());
        return kNone;
    }
}

}  // namespace
}  // namespace vndiscover::host

int main() { return vndiscover::host::Main(); }
