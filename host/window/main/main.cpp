// VnBrowser.exe: a window that shows devices, and an example of a host with a user interface.
//
//   VnBrowser.exe [--profile NAME] [--sweep [--save FILE] [--exit]]
//
// With --profile, SNMPv3 is used too, with the user that the window has saved under that name. With
// --exit, no window is shown, and problems go to the error output. Exit codes: 0 devices answered,
// 1 none, or the file could not be saved, 2 wrong usage, or the profile could not be opened, or a
// sweep failed.
#include <windows.h>

#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "platform/saved_file.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "window/dialogs/dialogs.h"
#include "window/main/main_window.h"
#include "window/resource.h"
#include "window/strings.h"
#include "window/work/module_engine.h"

namespace vndiscover::host {
namespace {

constexpr char kExit[] = "--exit";

// Returns what is wrong; empty: nothing.
std::wstring ReadOptions(const std::vector<std::string>& words, StartOptions& options) {
    for (size_t index = 0; index < words.size(); ++index) {
        const std::string& word = words[index];
        if (word == "--sweep") {
            options.sweep = true;
        } else if (word == kExit) {
            options.exit = true;
        } else if (word != "--profile" && word != "--save") {
            return Text(IDS_NO_OPTION, {ToWide(word)});
        } else if (index + 1 == words.size() || words[index + 1].empty()) {
            return Text(IDS_NO_VALUE, {ToWide(word)});  // as an unset variable of a script gives it
        } else if (word == "--profile") {
            options.profile = ToWide(words[++index]);
        } else {
            options.savePath = words[++index];
        }
    }
    if (!options.sweep && (options.exit || !options.savePath.empty())) return Text(IDS_NO_SWEEP);
    // Found out before the sweep.
    std::string problem;
    if (options.savePath.empty() || CanReplaceFile(options.savePath, problem)) return L"";
    return Text(IDS_NOT_SAVED, {ToWide(problem)});
}

int Run() {
    constexpr int kWrongUsage = 2;
    const auto words = CommandLineArguments();
    const bool isScript = std::count(words.begin(), words.end(), kExit) != 0;
    StartOptions options;
    if (const std::wstring problem = ReadOptions(words, options); !problem.empty()) {
        ShowProblem(nullptr, problem + L"\n\n" + Text(IDS_USAGE), isScript);
        return kWrongUsage;
    }
    try {
        ModuleEngine engine;
        MainWindow window(engine, options);
        return window.Run();
    } catch (const std::exception& error) {
        ShowProblem(nullptr, ToWide(error.what()), isScript);
        return kWrongUsage;
    }
}

}  // namespace
}  // namespace vndiscover::host

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) { return vndiscover::host::Run(); }
