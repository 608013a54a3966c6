#include "window/main/status_bar.h"

#include <commctrl.h>

#include <algorithm>

#include "platform/wide_text.h"
#include "window/controls/placement.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

void StatusBar::Create() {
    bar_ = CreateControl(state_.window, STATUSCLASSNAMEW, IDS_READY, SBARS_SIZEGRIP, IDC_STATUS);
    reading_ = CreateControl(bar_, PROGRESS_CLASSW, IDS_READ_BAR, 0, IDC_READ_BAR);
    ShowWindow(reading_, SW_HIDE);
}

void StatusBar::Show() const {
    const Progress::Status status =
        state_.progress.Now(state_.workers ? state_.workers->Now() : Progress::Work());
    ChangeText(bar_, TextOf(status));
    const bool isReading = status.kind == Progress::Kind::kReadingAll;
    if (isReading) {
        SendMessageW(reading_, PBM_SETRANGE32, 0, static_cast<LPARAM>(status.total));
        SendMessageW(reading_, PBM_SETPOS, status.count, 0);
    }
    ShowWindow(reading_, isReading ? SW_SHOWNA : SW_HIDE);
}

void StatusBar::Place(int dpi) const {
    RECT bar = {};
    SendMessageW(bar_, WM_SIZE, 0, 0);
    GetWindowRect(bar_, &bar);
    const int width = bar.right - bar.left, height = bar.bottom - bar.top;
    const int part = std::min(Scaled(160, dpi), width / 4);
    SetWindowPos(reading_, nullptr, width - part - Scaled(20, dpi), Scaled(4, dpi), part,
                 height - Scaled(7, dpi), SWP_NOZORDER | SWP_NOACTIVATE);
}

std::wstring StatusBar::TextOf(const Progress::Status& status) const {
    const std::wstring seconds = Grouped(static_cast<uint64_t>(status.seconds));
    const std::wstring count = Grouped(status.count), total = Grouped(status.total);
    const std::wstring found = Grouped(state_.session.CountFound());
    const std::wstring address = ToWide(status.address);
    const std::wstring wait = Text(IDS_WAITING, {address, std::to_wstring(status.waitSeconds)});
    switch (status.kind) {
        case Progress::Kind::kReady:
            return state_.file.empty() ? Text(IDS_READY) : state_.file;
        case Progress::Kind::kSearching:
            return Text(status.total == 0 ? IDS_SWEEPING_YET : IDS_SWEEPING,
                        {seconds, found, total});
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
            return Text(IDS_DONE, {seconds, found});
        case Progress::Kind::kStopped:
            return Text(IDS_STOPPED, {seconds, found});
        case Progress::Kind::kRead:
            return Text(
                status.count < status.total ? IDS_READ_STOPPED
                : status.unread > 0         ? IDS_READ_SOME
                                            : IDS_READ,
                {Grouped(status.count - status.unread), total, seconds, Grouped(status.unread)});
        case Progress::Kind::kNote:
            return state_.progress.Note();
    }
    return L"";
}

}  // namespace vndiscover::host
