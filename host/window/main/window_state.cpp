#include "window/main/window_state.h"

#include "platform/wide_text.h"
#include "window/dialogs/dialogs.h"
#include "window/dialogs/snmp_dialog.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

bool WindowState::ReportProblem(const std::wstring& text) {
    progress.SetNote(text);
    if (options.exit || !isSessionEnding) ShowProblem(window, text, options.exit);
    return false;
}

unsigned WindowState::Obstacle() const {
    if (!IsBusy()) return 0;
    if (progress.IsWalking()) return IDS_AWAITS_VALUES;
    const bool isList = progress.IsSearching() || (workers && workers->Now().read.total != 0);
    return isList ? IDS_AWAITS_ANSWERS : IDS_AWAITS_DEVICE;
}

std::optional<AskTarget> WindowState::SelectedTarget() const {
    const DeviceRow* row = session.view.SelectedRow();
    auto target = row ? session.TargetOf(*row) : std::nullopt;
    if (target) target = WithCredentials(*std::move(target));
    return target;
}

AskTarget WindowState::WithCredentials(AskTarget target) const {
    const std::string community = target.credentials.community;
    target.credentials = credentials;
    target.credentials.communities.clear();
    target.credentials.community = community;
    const auto& all = credentials.communities;
    if (target.isLoginKnown || all.empty()) return target;
    target.credentials.community = all.front();
    // Over SNMPv3 the user is asked once, not once for each community.
    if (target.kind != SweepKind::kSnmpV3)
        target.otherCommunities.assign(all.begin() + 1, all.end());
    return target;
}

Credentials DefaultCredentials() {
    Credentials credentials;
    credentials.communities = *ParseCommunities("");
    return credentials;
}

}  // namespace vndiscover::host
