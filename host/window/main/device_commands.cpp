#include "window/main/device_commands.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "model/scan/device_view.h"
#include "platform/wide_text.h"
#include "values/ip_address.h"
#include "values/text.h"
#include "values/utc_time.h"
#include "window/controls/clipboard.h"
#include "window/dialogs/dialogs.h"
#include "window/main/main_window.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

void ReadAll(WindowState& state, const std::vector<AskTarget>& targets) {
    if (targets.empty()) return;
    state.progress.BeginReadingAll();
    state.workers->ReadAll(targets);
    ReadSelected(state, false);  // for its details
}

// Reads devices without ending a reading for the list, or the search of the command line.
void ReadSome(WindowState& state, const std::vector<AskTarget>& targets) {
    if (!state.progress.IsSearching() && state.workers->Now().read.total == 0)
        return ReadAll(state, targets);
    for (const AskTarget& target : targets) state.workers->Read(target, false);
}

std::vector<AskTarget> TargetsOf(const Session& session, const std::vector<size_t>& rows) {
    std::vector<AskTarget> targets;
    for (const size_t row : rows) {
        if (auto target = session.TargetOf(session.view.Row(row).answers))
            targets.push_back(*std::move(target));
    }
    return targets;
}

// "Hall printer (10.77.1.21)"
std::wstring NameOf(const DeviceRow& row, const AskTarget& target) {
    const std::wstring name = ToWide(row.Text(Column::kName)), address = ToWide(target.address);
    return name.empty() ? address : name + L" (" + address + L")";
}

}  // namespace

void ReadSelected(WindowState& state, bool isAgain) {
    const DeviceRow* row = state.session.view.SelectedRow();
    const auto target = state.SelectedTarget();
    if (!target || !state.workers) return;
    // A file may name any address: credentials are sent there only if the user wants that.
    if (!isAgain && !state.session.HasAnsweredHere(row->answers, target->address)) return;
    if (isAgain && state.credentials.security && !target->login.security) {
        // A device that refuses the user does not answer a sweep; this finds out.
        AskTarget second = *target;
        second.UseUser(state.credentials.security);
        state.workers->Read(second, true);
    }
    state.workers->Read(*target, true, !isAgain);
}

void ReadFound(WindowState& state) { ReadAll(state, state.session.TargetsToRead()); }

void ReadAdded(WindowState& state, const Results::Addresses& addresses,
               std::vector<std::string> unknown, bool areFoundRead) {
    state.session.AddByHand(addresses, UtcNow());
    std::vector<AskTarget> targets;
    targets.reserve(addresses.size());
    for (const auto& [address, typed] : addresses)
        targets.push_back(state.session.TargetAt(address));
    // Otherwise they are read after the search, with what it finds.
    if (!areFoundRead || !state.progress.IsSearching()) ReadSome(state, targets);
    if (unknown.empty()) return;
    constexpr size_t kMaxNamed = 10;  // a file that is no list of addresses gives hundreds
    const size_t count = unknown.size();
    unknown.resize(std::min(count, kMaxNamed));
    std::wstring named = ToWide(Joined(unknown));
    if (count > kMaxNamed) named = Text(IDS_NO_ADDRESS_MORE, {named, Grouped(count - kMaxNamed)});
    state.ReportProblem(Text(IDS_NO_ADDRESS, {named}));
}

std::vector<std::string> WebAddresses(const Session& session) {
    std::vector<std::string> addresses;
    for (const size_t row : session.view.Selection()) {
        const ScanAnswer* latest = nullptr;  // the address may have changed
        for (const size_t index : session.view.Row(row).answers) {
            const ScanAnswer& answer = session.GetScan().answers[index];
            const auto known = ParseIpAddress(answer.address);
            if (known && known->IsIPv4() && (!latest || answer.time > latest->time))
                latest = &answer;
        }
        if (latest) addresses.push_back(latest->address);
    }
    return addresses;
}

void CopyCell(WindowState& state, Column column) {
    const DeviceView& view = state.session.view;
    std::wstring text;
    for (const size_t row : view.Selection())
        text += (text.empty() ? L"" : L"\r\n") + ShownText(view.Row(row), column);
    if (text.empty()) return state.progress.SetNote(Text(IDS_EMPTY_CELL));
    const bool isOne = text.find(L'\n') == std::wstring::npos;
    if (CopyText(state.window, text) && isOne) state.progress.SetNote(Text(IDS_COPIED, {text}));
}

void ReadAgain(MainWindow& window) {
    const Session& session = window.state.session;
    const std::vector<size_t> rows = session.view.Selection();
    if (rows.size() > 1) return ReadSome(window.state, TargetsOf(session, rows));
    ReadSelected(window.state, true);
}

void ReadShown(MainWindow& window) {
    std::vector<size_t> rows(window.state.session.view.Count());
    std::iota(rows.begin(), rows.end(), size_t{0});
    ReadAll(window.state, TargetsOf(window.state.session, rows));
}

void DiagnoseDevice(MainWindow& window) {
    AskTarget target = *window.state.SelectedTarget();
    target.UseUser(window.state.credentials.security);  // the diagnosis asks by both protocols
    window.doctor.Begin(target.address, NameOf(*window.state.session.view.SelectedRow(), target));
    window.state.workers->Diagnose(target);
    window.state.workers->MakeReport();
}

void DiagnoseComputer(MainWindow& window) {
    window.doctor.Begin("", L"");
    window.state.workers->MakeReport();
    window.state.progress.SetNote(Text(IDS_DOCTOR_WAIT));
}

void Walk(MainWindow& window) {
    const AskTarget target = *window.state.SelectedTarget();
    const DeviceRow& row = *window.state.session.view.SelectedRow();
    window.walk.Open(window.Handle(), target, NameOf(row, target));
}

void Split(MainWindow& window) {
    window.state.session.Split(*window.state.session.view.SelectedRow());
    window.state.showRows();
}

void AddByHand(MainWindow& window) {
    const std::vector<std::string> hosts = AskHosts(window.Handle());
    if (hosts.empty()) return;
    window.state.progress.SetNote(Text(IDS_RESOLVING, {Grouped(hosts.size())}));
    window.state.workers->Resolve(hosts);
}

// URLs are made from numeric addresses only, and never from what a device sends.
void OpenWebPages(MainWindow& window) {
    const std::vector<std::string> addresses = WebAddresses(window.state.session);
    const std::wstring question = Text(IDS_ASK_WEB_PAGES, {Grouped(addresses.size())});
    if (addresses.size() > 1 &&
        MessageBoxW(window.Handle(), question.c_str(), Text(IDS_TITLE).c_str(),
                    MB_OKCANCEL | MB_ICONQUESTION) != IDOK)
        return;
    for (const std::string& address : addresses)
        OpenElsewhere(window.state, ToWide("http://" + address + "/"));
}

}  // namespace vndiscover::host
