// VnBrowser.exe: a window that shows devices, and an example of a host with a user interface.
//
//   VnBrowser.exe [--profile NAME] [--sweep [--save FILE] [--exit]]
//
// With --profile, SNMPv3 is used too, with the user that the window has saved under that name. With
// --exit, no window is shown. Exit codes: 0 devices answered, 1 none, or the file could not be saved,
// 2 wrong usage, or the profile could not be opened.
#include <windows.h>

#include <exception>
#include <string>

#include "platform/saved_file.h"
#include "platform/wide_text.h"
#include "window/main_window.h"
#include "window/module_engine.h"

namespace {

bool ReadOptions(vndiscover::host::StartOptions& options) {
    const auto words = vndiscover::host::CommandLineArguments();
    for (size_t index = 0; index < words.size(); ++index) {
        if (words[index] == "--sweep") {
            options.sweep = true;
        } else if (words[index] == "--exit") {
            options.exit = true;
        } else if (index + 1 == words.size() || words[index + 1].empty()) {
            return false;  // as an unset variable of a script gives it
        } else if (words[index] == "--profile") {
            options.profile = vndiscover::host::ToWide(words[++index]);
        } else if (words[index] == "--save") {
            options.savePath = words[++index];
        } else {
            return false;
        }
    }
    // Found out before the sweep.
    std::string problem;
    if (!options.savePath.empty() && !vndiscover::host::CanReplaceFile(options.savePath, problem)) return false;
    return options.sweep || (options.savePath.empty() && !options.exit);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    constexpr int kWrongUsage = 2;
    try {
        vndiscover::host::StartOptions options;
        if (!ReadOptions(options)) return kWrongUsage;
        vndiscover::host::ModuleEngine engine;
        vndiscover::host::MainWindow window(engine, options);
        return window.Run();
    } catch (const std::exception&) {
        return kWrongUsage;
    }
}
