#include "window/main/searches.h"

#include <utility>

#include "platform/wide_text.h"
#include "window/dialogs/snmp_dialog.h"
#include "window/resource.h"
#include "window/store/profiles.h"
#include "window/strings.h"

namespace vndiscover::host {

void Searches::AskForUser() { AskCredentials(state_.window, state_.credentials); }

// Gets the SNMPv3 user. Returns false if there is none and the user cannot be asked.
bool Searches::FetchUser() {
    const std::wstring& profile = state_.options.profile;
    if (UseProfile(profile.empty() ? LastProfile() : profile, state_.credentials)) return true;
    if (state_.options.exit) {
        state_.exitCode = kFailed;
        PostMessageW(state_.window, WM_CLOSE, 0, 0);
        return state_.ReportProblem(Text(IDS_NO_PROFILE, {profile}));
    }
    AskForUser();
    // Cancelling the dialog switches off SNMPv3.
    if (!state_.credentials.security) bar_.UseV3(false);
    return true;
}

void Searches::Start() {
    if (bar_.UsesV3() && !state_.credentials.security && !FetchUser()) return;
    const std::vector<SweepStep> steps = bar_.Steps(state_.credentials);
    if (steps.empty()) return state_.progress.SetNote(Text(IDS_NOTHING_CHOSEN));
    state_.workers->ReadAdapters();  // again, since the user may have plugged one in
    state_.progress.BeginSearch(steps.size());
    state_.workers->Sweep(steps);
    bar_.SetButton(IDS_STOP);
    state_.StartStatusTimer();
}

void Searches::Stop() {
    state_.workers->Stop();
    state_.progress.StopSearch();
    if (state_.progress.IsStopping()) bar_.SetButton(IDS_STOPPING);
}

void Searches::EndSweep(const std::string& problem) {
    if (!problem.empty()) problem_ = Text(IDS_SWEEP_FAILED, {ToWide(problem)});
    isOver_ |= state_.progress.EndSweep();
}

void Searches::Finish() {
    isOver_ = false;
    bar_.SetButton(IDS_FIND);
    const bool wasStart = state_.options.sweep;
    EndStartSearch();
    if (!problem_.empty()) state_.ReportProblem(std::exchange(problem_, L""));
    if (wasStart && state_.options.exit) PostMessageW(state_.window, WM_CLOSE, 0, 0);
}

// Saves what the search of the command line has found.
void Searches::EndStartSearch() {
    if (!std::exchange(state_.options.sweep, false)) return;
    const std::string& path = state_.options.savePath;
    const bool isLost = !path.empty() && !scans_.SaveTo(path);
    state_.exitCode = state_.progress.Answers() == 0 || isLost ? kNone : kFound;
    if (!problem_.empty()) state_.exitCode = kFailed;
}

bool Searches::WillSave() const {
    return state_.progress.IsSearching() && state_.options.sweep &&
           !state_.options.savePath.empty();
}

void Searches::EndEarly() {
    if (state_.progress.IsSearching() || isOver_) EndStartSearch();
}

}  // namespace vndiscover::host
