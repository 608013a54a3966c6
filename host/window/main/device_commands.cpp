#include "window/main/device_commands.h"

#include <shellapi.h>

#include <utility>

#include "platform/wide_text.h"
#include "values/ip_address.h"
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
    if (!target || (!isAgain && state_.session.WasAsked(*row))) return;
    if (state_.progress.IsReading(target->address)) return;
    // Credentials go to an address of a file only if the user says so.
    if (!isAgain && !state_.session.HasAnsweredHere(*row, target->address)) return;
    if (isAgain && target->credentials.security && target->kind == SweepKind::kSnmpV1) {
        // To a sweep, a device that refuses the user is silent.
        AskTarget second = *target;
        second.kind = SweepKind::kSnmpV3;
        state_.workers->Ask(second, true);
    }
    state_.workers->Ask(*target, true);
}

void DeviceCommands::AskAll() {
    const DeviceView& view = state_.session.view;
    for (size_t index = 0; index < view.Count(); ++index) {
        auto target = state_.session.TargetOf(view.Row(index));
        if (!target || state_.session.WasAsked(view.Row(index))) continue;
        target->credentials = state_.credentials;
        state_.workers->Ask(*target, false);
    }
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
void DeviceCommands::OpenWebPage() const {
    const std::string address = WebAddress();
    if (address.empty()) return;
    ShellExecuteW(state_.window, L"open", ToWide("http://" + address + "/").c_str(), nullptr,
                  nullptr, SW_SHOWNORMAL);
}

void DeviceCommands::CopyCell(Column column) {
    const DeviceRow* row = state_.session.view.SelectedRow();
    if (!row) return;
    const std::wstring text = list_.TextOf(*row, column);
    if (CopyText(state_.window, text)) state_.progress.SetNote(Text(IDS_COPIED, {text}));
}

}  // namespace vndiscover::host
