#include "window/main/device_commands.h"

#include <utility>

#include "platform/wide_text.h"
#include "values/ip_address.h"
#include "values/utc_time.h"
#include "window/dialogs/add_dialog.h"
#include "window/main/help.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

WalkWindow::Actions ActionsOf(WindowState& state) {
    WalkWindow::Actions actions;
    actions.start = [&state](const AskTarget& target, const Oid& root, unsigned walk) {
        state.workers->Walk(target, root, walk);
        state.StartStatusTimer();
    };
    actions.stop = [&state] {
        if (state.workers) state.workers->StopWalk();
    };
    return actions;
}

}  // namespace

DeviceCommands::DeviceCommands(WindowState& state, const DeviceList& list)
    : walk(ActionsOf(state)), state_(state), list_(list) {}

void DeviceCommands::Ask(bool isAgain) {
    const DeviceRow* row = state_.session.view.SelectedRow();
    const auto target = state_.SelectedTarget();
    if (!target || !state_.workers || state_.progress.IsReading(target->address)) return;
    // It is being asked already, or will be, although no worker has said so yet.
    const bool wasLast = std::exchange(asked_, target->address) == target->address;
    if (!isAgain && wasLast && state_.workers->IsSending()) return;
    // Credentials go to an address of a file only if the user says so.
    if (!isAgain && !state_.session.HasAnsweredHere(row->answers, target->address)) return;
    if (isAgain && target->credentials.security && target->kind == SweepKind::kSnmpV1) {
        // To a sweep, a device that refuses the user is silent.
        AskTarget second = *target;
        second.kind = SweepKind::kSnmpV3;
        second.otherCommunities.clear();
        state_.workers->Ask(second, true);
    }
    state_.workers->Ask(*target, true, !isAgain);
    state_.StartStatusTimer();
}

bool DeviceCommands::ReadShown() {
    const DeviceView& view = state_.session.view;
    std::vector<AskTarget> targets;
    for (size_t index = 0; index < view.Count(); ++index) {
        if (auto target = state_.session.TargetOf(view.Row(index)))
            targets.push_back(*std::move(target));
    }
    return ReadAll(std::move(targets));
}

bool DeviceCommands::ReadFound() { return ReadAll(state_.session.TargetsToRead()); }

bool DeviceCommands::ReadAll(std::vector<AskTarget> targets) {
    if (targets.empty()) return false;
    for (AskTarget& target : targets) target = state_.WithCredentials(std::move(target));
    state_.progress.BeginReadingAll();
    state_.workers->ReadAll(targets);
    state_.StartStatusTimer();
    asked_.clear();
    Ask(false);  // the selected one whole
    return true;
}

void DeviceCommands::Diagnose() {
    const auto target = state_.SelectedTarget();
    if (!target) return;
    doctor.Begin(target->address);
    state_.workers->Diagnose(*target);
    state_.workers->MakeReport();
}

void DeviceCommands::DiagnoseComputer() {
    doctor.Begin("");
    state_.workers->MakeReport();
    state_.progress.SetNote(Text(IDS_DOCTOR_WAIT));
}

void DeviceCommands::Walk() {
    if (auto target = state_.SelectedTarget()) walk.Open(state_.window, *std::move(target));
}

void DeviceCommands::Split() {
    const DeviceRow* row = state_.session.view.SelectedRow();
    if (!row) return;
    state_.session.Split(*row);
    state_.showRows();
}

void DeviceCommands::AddByHand() {
    const std::vector<std::string> hosts = AskHosts(state_.window);
    if (!hosts.empty()) state_.workers->Resolve(hosts);
}

void DeviceCommands::Added(const std::vector<std::pair<std::string, std::string>>& addresses,
                           const std::string& unknown) {
    state_.session.AddByHand(addresses, UtcNow());
    for (const auto& [address, typed] : addresses) {
        AskTarget target;
        target.address = address;
        state_.workers->Ask(state_.WithCredentials(std::move(target)), false);
    }
    if (!unknown.empty()) state_.ReportProblem(Text(IDS_NO_ADDRESS, {ToWide(unknown)}));
}

std::string DeviceCommands::WebAddress() const {
    const DeviceRow* row = state_.session.view.SelectedRow();
    if (!row) return "";
    for (const size_t index : row->answers) {
        const std::string& address = state_.session.GetScan().answers[index].address;
        const auto known = ParseIpAddress(address);
        if (known && known->IsIPv4()) return address;
    }
    return "";
}

// Made only from a numeric address: nothing that a device sends becomes a URL.
void DeviceCommands::OpenWebPage() {
    OpenElsewhere(state_, ToWide("http://" + WebAddress() + "/"));
}

void DeviceCommands::CopyCell(Column column) {
    const DeviceRow* row = state_.session.view.SelectedRow();
    if (!row) return;
    const std::wstring text = ShownText(*row, column);
    if (CopyText(state_.window, text)) state_.progress.SetNote(Text(IDS_COPIED, {text}));
}

}  // namespace vndiscover::host
