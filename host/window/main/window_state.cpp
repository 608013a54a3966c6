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

std::wstring WindowState::StatusText() const {
    const Progress::Status status = progress.Now(workers ? workers->Waiting() : 0);
    const std::wstring seconds = std::to_wstring(status.seconds);
    const std::wstring count = std::to_wstring(status.count), address = ToWide(status.address);
    switch (status.kind) {
        case Progress::Kind::kReady:
            return Text(IDS_READY);
        case Progress::Kind::kSearching:
            return Text(IDS_SWEEPING, {seconds, count, std::to_wstring(status.addresses)});
        case Progress::Kind::kAsking: {
            const std::wstring asking = Text(IDS_ASKING, {address, seconds});
            return status.count == 0 ? asking : Text(IDS_ASKING_MORE, {asking, count});
        }
        case Progress::Kind::kWalking:
            return Text(IDS_WALK_STATUS, {address, seconds, count});
        case Progress::Kind::kDone:
            return Text(IDS_DONE, {seconds, count});
        case Progress::Kind::kStopped:
            return Text(IDS_STOPPED, {seconds, count});
        case Progress::Kind::kNote:
            return progress.Note();
    }
    return L"";
}

std::optional<AskTarget> WindowState::SelectedTarget() const {
    const DeviceRow* row = session.view.SelectedRow();
    auto target = row ? session.TargetOf(*row) : std::nullopt;
    if (target) target->credentials = credentials;
    return target;
}

}  // namespace vndiscover::host
