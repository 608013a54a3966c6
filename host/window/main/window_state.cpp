#include "window/main/window_state.h"

#include "platform/wide_text.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

bool WindowState::ReportProblem(const std::wstring& text) {
    progress.SetNote(text);
    ShowProblem(window, text, options.exit);
    return false;
}

void WindowState::StartStatusTimer() const {
    constexpr UINT kStatusMs = 250;
    SetTimer(window, kStatusTimer, kStatusMs, nullptr);
}

Progress::Status WindowState::Now() const {
    return progress.Now(workers ? workers->Now() : Progress::Work());
}

std::wstring WindowState::StatusText() const {
    const Progress::Status status = Now();
    const std::wstring seconds = std::to_wstring(status.seconds);
    const std::wstring count = std::to_wstring(status.count), total = std::to_wstring(status.total);
    const std::wstring address = ToWide(status.address);
    const std::wstring wait = Text(IDS_WAITING, {address, std::to_wstring(status.waitSeconds)});
    switch (status.kind) {
        case Progress::Kind::kReady:
            return file.empty() ? Text(IDS_READY) : file;
        case Progress::Kind::kSearching:
            return Text(IDS_SWEEPING, {seconds, count, total});
        case Progress::Kind::kReadingAll: {
            const std::wstring reading = Text(IDS_READING, {count, total});
            return address.empty() ? reading : reading + L", " + wait;
        }
        case Progress::Kind::kAsking: {
            const bool isLong = status.waitSeconds * 1000 >= Progress::kWaitMs;
            const std::wstring asking = isLong ? wait : Text(IDS_ASKING, {address, seconds});
            return status.count == 0 ? asking : Text(IDS_ASKING_MORE, {asking, count});
        }
        case Progress::Kind::kWalking:
            return Text(IDS_WALK_STATUS, {address, seconds, count});
        case Progress::Kind::kStopping:
            return Text(IDS_STOPPING_UP_TO, {seconds});
        case Progress::Kind::kDone:
            return Text(IDS_DONE, {seconds, count});
        case Progress::Kind::kStopped:
            return Text(IDS_STOPPED, {seconds, count});
        case Progress::Kind::kRead:
            return Text(status.count < status.total ? IDS_READ_STOPPED : IDS_READ,
                        {count, total, seconds});
        case Progress::Kind::kNote:
            return progress.Note();
    }
    return L"";
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
    if (target.isLoginKnown || credentials.communities.empty()) return target;
    target.otherCommunities = credentials.communities;
    target.credentials.community = target.otherCommunities.front();
    target.otherCommunities.erase(target.otherCommunities.begin());
    return target;
}

Credentials DefaultCredentials() {
    Credentials credentials;
    credentials.communities = {"", "public"};
    return credentials;
}

}  // namespace vndiscover::host
