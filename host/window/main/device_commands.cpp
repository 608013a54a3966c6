#include "window/main/device_commands.h"

#include <numeric>
#include <utility>

#include "model/scan/device_view.h"
#include "platform/wide_text.h"
#include "values/ip_address.h"
#include "values/utc_time.h"
#include "window/dialogs/dialogs.h"
#include "window/strings.h"

namespace vndiscover::host {
DeviceCommands::DeviceCommands(WindowState& state)
    : walk({[&state](const AskTarget& target, const Oid& root, unsigned number) {
                state.workers->Walk(target, root, number);
            },
            [&state] {
                if (state.workers) state.workers->StopWalk();
            }}),
      state_(state) {}

void DeviceCommands::Ask(bool isAgain) {
    const DeviceRow* row = state_.session.view.SelectedRow();
    const auto target = state_.SelectedTarget();
    if (!target || !state_.workers) return;
    // Credentials go to an address of a file only if the user says so.
    if (!isAgain && !state_.session.HasAnsweredHere(row->answers, target->address)) return;
    if (isAgain && state_.credentials.security && !target->login.security) {
        // To a sweep, a device that refuses the user is silent.
        AskTarget second = *target;
        second.UseUser(state_.credentials.security);
        state_.workers->Ask(second, true);
    }
    state_.workers->Ask(*target, true, !isAgain);
}

void DeviceCommands::ReadAgain() {
    const std::vector<size_t> rows = state_.session.view.Selection();
    if (rows.size() > 1) {
        ReadAll(TargetsOf(rows));
    } else {
        Ask(true);
    }
}

bool DeviceCommands::ReadShown() {
    std::vector<size_t> rows(state_.session.view.Count());
    std::iota(rows.begin(), rows.end(), size_t{0});
    return ReadAll(TargetsOf(rows));
}

std::vector<AskTarget> DeviceCommands::TargetsOf(const std::vector<size_t>& rows) const {
    std::vector<AskTarget> targets;
    for (const size_t row : rows) {
        if (auto target = state_.session.TargetOf(state_.session.view.Row(row).answers))
            targets.push_back(*std::move(target));
    }
    return targets;
}

bool DeviceCommands::ReadFound() { return ReadAll(state_.session.TargetsToRead()); }

bool DeviceCommands::ReadAll(const std::vector<AskTarget>& targets) {
    if (targets.empty()) return false;
    state_.progress.BeginReadingAll();
    state_.workers->ReadAll(targets);
    Ask(false);  // the selected one whole
    return true;
}

void DeviceCommands::Diagnose() {
    auto target = state_.SelectedTarget();
    if (!target) return;
    target->UseUser(state_.credentials.security);  // asked by both protocols
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
    std::vector<AskTarget> targets;
    targets.reserve(addresses.size());
    for (const auto& [address, typed] : addresses)
        targets.push_back(state_.session.TargetAt(address));
    if (!state_.progress.IsSearching() && state_.workers->Now().read.total == 0) {
        ReadAll(targets);
    } else {  // it would end what is being read, or the search of the command line
        for (const AskTarget& target : targets) state_.workers->Ask(target, false);
    }
    if (!unknown.empty()) state_.ReportProblem(Text(IDS_NO_ADDRESS, {ToWide(unknown)}));
}

std::vector<std::string> DeviceCommands::WebAddresses() const {
    const DeviceView& view = state_.session.view;
    std::vector<std::string> addresses;
    for (const size_t row : view.Selection()) {
        for (const size_t index : view.Row(row).answers) {
            const std::string& address = state_.session.GetScan().answers[index].address;
            const auto known = ParseIpAddress(address);
            if (!known || !known->IsIPv4()) continue;
            addresses.push_back(address);
            break;
        }
    }
    return addresses;
}

// Made only from numeric addresses: nothing that a device sends becomes a URL.
void DeviceCommands::OpenWebPages() {
    const std::vector<std::string> addresses = WebAddresses();
    const std::wstring question = Text(IDS_ASK_WEB_PAGES, {Grouped(addresses.size())});
    if (addresses.size() > 1 &&
        MessageBoxW(state_.window, question.c_str(), Text(IDS_TITLE).c_str(),
                    MB_YESNO | MB_ICONQUESTION) != IDYES)
        return;
    for (const std::string& address : addresses)
        OpenElsewhere(state_, ToWide("http://" + address + "/"));
}

// One line for each selected row.
void DeviceCommands::CopyCell(Column column) {
    const DeviceView& view = state_.session.view;
    std::wstring text;
    for (const size_t row : view.Selection())
        text += (text.empty() ? L"" : L"\r\n") + ShownText(view.Row(row), column);
    const bool isOne = text.find(L'\n') == std::wstring::npos;
    if (CopyText(state_.window, text) && isOne) state_.progress.SetNote(Text(IDS_COPIED, {text}));
}

}  // namespace vndiscover::host
