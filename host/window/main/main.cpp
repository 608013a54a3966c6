// VnBrowser.exe: a window that shows devices, and an example of a host with a user interface.
// IDS_USAGE has its options. With --profile, SNMPv3 is used too, with the user that the window has
// saved under that name. With --exit, no window is shown, and problems go to the error output.
// Wrong usage is always reported there. Exit codes:
//   0 devices answered
//   1 no device answered, or a file could not be saved
//   2 wrong usage, the profile could not be opened, or the search failed
//   3 nothing could be sent
#include <windows.h>

#include <iterator>
#include <string>
#include <vector>

#include "platform/saved_file.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/ranges.h"
#include "window/dialogs/dialogs.h"
#include "window/dialogs/snmp_dialog.h"
#include "window/main/main_window.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr char kExit[] = "--exit";
constexpr const char* kPresetWords[] = {"printers", "everything", "module"};
static_assert(std::size(kPresetWords) == kPresetCount);

template <std::string StartOptions::*kField>
bool StoreText(const std::string& value, StartOptions& options) {
    options.*kField = value;
    return true;
}

// Either sets a flag or reads a value. `read` returns false if that is not valid.
constexpr struct Option {
    const char* word;
    bool StartOptions::*flag;
    bool (*read)(const std::string& value, StartOptions& options);
    unsigned mistake = 0;  // the string that says which values are valid; 0: none
} kOptions[] = {
    {"--sweep", &StartOptions::sweep, nullptr},
    {"--read", &StartOptions::read, nullptr},
    {kExit, &StartOptions::exit, nullptr},
    {"--profile", nullptr, StoreText<&StartOptions::profile>},
    {"--community", nullptr,
     [](const std::string& value, StartOptions& options) {
         const auto communities = ParseCommunities(value);
         if (communities)
             options.communities.insert(options.communities.end(), communities->begin(),
                                        communities->end());
         return communities && !communities->empty();
     },
     IDS_SNMP_BAD_COMMUNITY},
    {"--look-for", nullptr,
     [](const std::string& value, StartOptions& options) {
         const auto* const preset = FindIf(kPresetWords, [&](auto* word) { return value == word; });
         if (preset) options.lookFor = static_cast<unsigned>(preset - kPresetWords);
         return preset != nullptr;
     }},
    {"--save", nullptr, StoreText<&StartOptions::savePath>},
    {"--csv", nullptr, StoreText<&StartOptions::csvPath>},
};

// Returns what is wrong; an empty text if all is valid.
std::wstring ReadOptions(const std::vector<std::string>& words, StartOptions& options) {
    for (size_t index = 0; index < words.size(); ++index) {
        const std::string& word = words[index];
        const Option* const option =
            FindIf(kOptions, [&](const Option& one) { return word == one.word; });
        if (!option) return Text(IDS_NO_OPTION, {ToWide(word)});
        if (option->flag) {
            options.*option->flag = true;
            continue;
        }
        // With an unset variable in a script, the value is empty or the next option.
        if (index + 1 == words.size() || words[index + 1].empty() ||
            words[index + 1].rfind("--", 0) == 0)
            return Text(IDS_NO_VALUE, {ToWide(word)});
        if (!option->read(words[++index], options))
            return Text(IDS_BAD_VALUE, {ToWide(word), ToWide(words[index])}) +
                   (option->mistake ? L" " + Text(option->mistake) : L"");
    }
    if (!options.savePath.empty() && !options.csvPath.empty() &&
        IsSamePath(options.savePath, options.csvPath))
        return Text(IDS_ONE_FILE, {ToWide(options.csvPath)});
    const bool needsSweep =
        options.exit || options.read || !options.savePath.empty() || !options.csvPath.empty();
    return needsSweep && !options.sweep ? Text(IDS_NO_SWEEP) : L"";
}

// Called before the sweep. Returns why a file could not be written; an empty text if all can.
std::wstring CheckFiles(const StartOptions& options) {
    for (const std::string& path : {options.savePath, options.csvPath}) {
        std::string problem;
        if (!path.empty() && !CanReplaceFile(path, problem))
            return Text(IDS_NOT_SAVED, {ToWide(problem), ToWide(path)});
    }
    // A wrong name must not replace any other file.
    const std::string& path = options.savePath;
    std::string problem;
    bool isBroken = false;
    if (!options.csvPath.empty() && LoadScan(options.csvPath, isBroken, problem))
        return Text(IDS_IS_A_SCAN, {ToWide(options.csvPath)});
    const bool isOld = FileExists(path) && ReadFileText(path, 0, problem) != "";
    return isOld && !LoadScan(path, isBroken, problem) ? Text(IDS_NOT_A_SCAN, {ToWide(path)}) : L"";
}

int Run() {
    const auto words = CommandLineArguments();
    if (words == std::vector<std::string>{kReaderOption}) {
        ServeReader();
        return kFound;
    }
    const bool isScript = Contains(words, kExit);
    StartOptions options;
    if (const std::wstring problem = ReadOptions(words, options); !problem.empty()) {
        ShowProblem(nullptr, problem + L"\n\n" + Text(IDS_USAGE), true);
        return kFailed;
    }
    if (const std::wstring problem = CheckFiles(options); !problem.empty()) {
        ShowProblem(nullptr, problem, isScript);
        return kNone;
    }
    try {
        const auto engine = MakeModuleEngine();
        MainWindow window(*engine, options);
        return window.Run();
    } catch (...) {
        ShowException(nullptr, isScript);
        return kFailed;
    }
}

}  // namespace
}  // namespace vndiscover::host

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) { return vndiscover::host::Run(); }
