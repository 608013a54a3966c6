#include "window/main/searches.h"

#include <algorithm>
#include <utility>

#include "model/scan/device_view.h"
#include "platform/saved_file.h"
#include "platform/wide_text.h"
#include "window/dialogs/dialogs.h"
#include "window/dialogs/snmp_dialog.h"
#include "window/main/device_commands.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void Searches::ApplyOptions() {
    const StartOptions& options = state_.options;
    if (!options.exit)
        state_.progress.SetNote(UseSaved(ToWide(options.profile), state_.credentials));
    if (!options.profile.empty()) bar_.TickV3();
    if (options.lookFor) bar_.Choose(*options.lookFor);
    if (!options.communities.empty()) state_.credentials.communities = options.communities;
    state_.session.view.ShowOnlyPrinters(bar_.LooksForPrinters());
}

void Searches::AskForUser() {
    if (!AskCredentials(state_.window, state_.credentials, L"")) return;
    state_.refusal.clear();
    state_.session.ForgetRefusals();
    state_.showRows();
}

// Gets the SNMPv3 user from the profile or by asking. Returns false if there is none.
bool Searches::FetchUser() {
    const std::wstring profile = ToWide(state_.options.profile);
    if (UseProfile(profile, state_.credentials)) return true;
    if (state_.options.exit) {
        state_.exitCode = kFailed;
        PostMessageW(state_.window, WM_CLOSE, 0, 0);
        return state_.ReportProblem(Text(IDS_NO_PROFILE, {profile}));
    }
    AskCredentials(state_.window, state_.credentials,
                   Text(profile.empty() ? IDS_SNMP_WHY : IDS_NO_PROFILE, {profile}));
    if (state_.credentials.security) return true;
    state_.progress.SetNote(Text(IDS_NO_USER));
    return false;
}

// Asks whether new devices are added to those of a file or replace them.
bool Searches::MayStart() {
    if (state_.file.empty() || state_.options.exit) return true;
    const int answer = AskYesNoCancel(state_.window, Text(IDS_FIND_HOW, {state_.file}),
                                      IDS_FIND_ADD, IDS_FIND_NEW);
    if (answer == IDNO && scans_.MayDrop(IDS_ASK_SAVE_NEW)) scans_.Empty();
    if (answer == IDYES) scans_.AddToFile();
    return state_.file.empty();
}

void Searches::Start() {
    if (bar_.UsesV3() && !state_.credentials.security && !FetchUser()) return;
    const std::vector<SweepStep> steps = bar_.Steps(state_.credentials);
    if (steps.empty()) return state_.progress.SetNote(Text(IDS_NOTHING_CHOSEN));
    if (!MayStart()) return;
    isForStart_ = state_.options.sweep;
    wasSent_ = false;
    state_.refusal.clear();
    state_.workers->ReadAdapters();  // they may have changed
    state_.session.BeginSearch();
    state_.progress.BeginSearch(steps.size());
    state_.showRows();  // rows may have left or moved
    state_.workers->Sweep(steps);
}

bool Searches::Repeat() {
    const bool needsUser = bar_.UsesV3() && !state_.credentials.security;
    if (!state_.workers || !IsWindowEnabled(state_.window) || state_.IsBusy()) return false;
    if (!state_.progress.HasSearched() || !state_.file.empty() || needsUser) {
        // With a file open, its name stays the status.
        if (state_.file.empty())
            state_.progress.SetNote(Text(needsUser ? IDS_NO_USER : IDS_NOT_REPEATED));
        return false;
    }
    Start();
    return true;
}

void Searches::EndSweep(bool wasSent, const std::string& problem) {
    wasSent_ |= wasSent;
    if (!problem.empty()) problem_ = Text(IDS_SWEEP_FAILED, {ToWide(problem)});
    isOver_ |= state_.progress.EndSweep();
}

void Searches::Finish() {
    isOver_ = false;
    state_.session.EndSearch();
    const bool isScript = isForStart_ && state_.options.exit;
    // Without workers the window is closing: then it does not matter that nothing was sent.
    state_.isUnsent = !wasSent_ && !state_.progress.WasStopped() && state_.workers;
    // A script's problem is reported when the script ends.
    if (state_.isUnsent && isScript) problem_ = Text(IDS_NOTHING_SENT);
    if (!problem_.empty() && !isScript) state_.ReportProblem(std::exchange(problem_, L""));
    // In the status only: a message would keep a list that refreshes itself waiting.
    if (state_.isUnsent) state_.progress.SetNote(Text(IDS_NOTHING_SENT));
    state_.showRows();
    if (state_.progress.WasStopped() || state_.progress.IsStopping() || !state_.workers) return;
    if (const auto target = state_.session.WhomToAskForARefusal())
        state_.workers->Read(*target, true);
    if (ReadsFound()) ReadFound(state_);
}

void Searches::EndReading() {
    if (!isForStart_ || isOver_ || state_.progress.IsSearching()) return;
    state_.showRows();  // includes the last results
    EndStartSearch();
    if (!problem_.empty()) state_.ReportProblem(std::exchange(problem_, L""));
    if (state_.options.exit) PostMessageW(state_.window, WM_CLOSE, 0, 0);
}

void Searches::EndStartSearch() {
    if (!std::exchange(isForStart_, false)) return;
    state_.options.sweep = false;
    const std::string& path = state_.options.savePath;
    const std::string& csv = state_.options.csvPath;
    // A file stays as it is if nothing was sent, or if it has devices and this search found none.
    std::string ignored;
    bool isBroken = false;
    const bool isEmpty = state_.session.GetScan().answers.empty();
    const auto former = isEmpty && !path.empty() ? LoadScan(path, isBroken, ignored) : std::nullopt;
    const bool hasFormerDevices = former && !former->answers.empty();
    if (hasFormerDevices) state_.ReportProblem(Text(IDS_FORMER_STAYS, {ToWide(path)}));
    const bool mayWrite = !state_.isUnsent && !hasFormerDevices;
    bool isLost = mayWrite && !path.empty() && !scans_.SaveTo(path);
    isLost |= mayWrite && !csv.empty() && !scans_.SaveCsvTo(csv);
    const bool isNone = state_.progress.Answers() == 0 || isLost;
    const int code = state_.isUnsent     ? kSendFailed
                     : !problem_.empty() ? kFailed
                     : isNone            ? kNone
                                         : kFound;
    state_.exitCode = std::max(state_.exitCode, code);  // that of an exception stays
}

bool Searches::WillSave() const {
    return isForStart_ && !(state_.options.savePath.empty() && state_.options.csvPath.empty());
}

}  // namespace vndiscover::host
