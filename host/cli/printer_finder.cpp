#include "cli/printer_finder.h"

#include <vndiscover.h>

#include <algorithm>
#include <tuple>

#include "device/device.h"
#include "device/fleet_readers.h"
#include "model/scan/device_merge.h"
#include "platform/console.h"
#include "platform/result_window.h"
#include "platform/wide_text.h"
#include "values/ip_address.h"
#include "values/object_names.h"
#include "values/ranges.h"
#include "values/text.h"
#include "values/utc_time.h"

namespace vndiscover::host {
namespace {

void SortWorstFirst(std::vector<PrinterLine>& printers) {
    const auto order = [](const PrinterLine& printer) {
        const std::string address = printer.addresses.empty() ? "" : printer.addresses.front();
        return std::make_tuple(printer.summary.severity, printer.summary.lowestSupply.value_or(101),
                               AddressOrder(address));
    };
    std::stable_sort(printers.begin(), printers.end(),
                     [&](const auto& one, const auto& other) { return order(one) < order(other); });
}

SweepKind KindOf(const Login& login) {
    return login.security ? SweepKind::kSnmpV3 : SweepKind::kSnmpV1;
}

}  // namespace

std::string NameOf(const Login& login) {
    return login.security ? "the SNMPv3 user '" + ToUtf8(login.security->user) + "'"
                          : "community '" + PlainText(login.community) + "'";
}

void PrinterFinder::Run(bool useIPv6) {
    phase_ = "starting";
    const SweepWatch watch(StopDiscoverSnmp, [this] {
        const std::lock_guard<std::mutex> lock(mutex_);
        return phase_.empty() ? fleet_.Progress() : phase_;
    });
    for (const bool isIPv6 : {false, true}) {
        for (size_t login = 0; login < logins_.size() && (useIPv6 || !isIPv6); ++login) {
            if (!watch.IsStopped()) Sweep(login, isIPv6, kPrinterObject);
            // Over SNMPv3 a device without that object would not be reported.
            if (!watch.IsStopped() && logins_[login].security) Sweep(login, isIPv6, "sysName.0");
        }
    }
    ReadAll(watch);
    FindRefusals(watch);
    isStopped_ = watch.IsStopped();
}

// Over SNMPv3 a device that refuses is not found, so one that was found by another login is asked.
void PrinterFinder::FindRefusals(const SweepWatch& watch) {
    OwnReader reader(logins_);
    for (size_t login = 0; login < logins_.size() && !devices_.empty(); ++login) {
        if (!logins_[login].security || answered_.count(login) != 0 || watch.IsStopped()) continue;
        ShowPhase("asking why " + NameOf(logins_[login]) + " gets no answer");
        const std::string& address = fleet_.Devices().front().address;
        const Answer answer = reader.GetNext(login, address, OidOf("sysDescr"));
        // Silence may be that of a device without SNMPv3.
        if (answer.status == Status::kRefused || answer.status == Status::kOnlyDiscovered)
            refusals_.push_back(
                address + ", " + NameOf(logins_[login]) + ": " +
                (answer.status == Status::kRefused ? answer.note : Problem(answer)));
    }
}

void PrinterFinder::ShowPhase(std::string phase) {
    const std::lock_guard<std::mutex> lock(mutex_);
    phase_ = std::move(phase);
}

void PrinterFinder::Sweep(size_t login, bool useIPv6, const char* object) {
    const Login& by = logins_[login];
    const Oid oid = *ParseOidOrName(object);
    const SweepKind kind = KindOf(by);
    scan_.sweeps.push_back({kind, FormOf(kind, oid), useIPv6, oid, UtcNow()});
    ShowPhase("sweep with " + NameOf(by) + (useIPv6 ? " over IPv6" : ""));
    const ResultWindow window([&](const char* address, const char* value) {
        scan_.answers.push_back({scan_.sweeps.size() - 1, UtcNow(), address, Received(value)});
        answered_.insert(login);
        const auto [device, isNew] = devices_.try_emplace(address, devices_.size());
        if (isNew) answeredBy_.emplace_back();
        IndexOrAppend(answeredBy_[device->second], login);
        if (!isNew) return;
        std::map<Oid, Answer> known;
        if (!by.security && *value) known[oid] = AnsweredWith(oid, kOctetString, value);
        const std::lock_guard<std::mutex> lock(mutex_);
        fleet_.Add(address, login, std::move(known));
    });
    wasSent_ |= RunSweep(window.Handle(), ResultWindow::kMessage, SweepFor(by, oid, useIPv6));
    window.Rethrow();
}

// One that is no printer by this login is read by the next one that it has answered, too: a login
// may see less than another one.
FleetDevice PrinterFinder::Read(FleetDevice job, Reader& reader,
                                const std::function<bool()>& maySend) const {
    const std::vector<size_t>& logins = answeredBy_[job.index];
    for (auto next = std::find(logins.begin(), logins.end(), job.login);;) {
        Asker asker;
        asker.isV3 = logins_[job.login].security != nullptr;
        asker.mayGoOn = maySend;
        asker.getNext = [&](const Oid& oid) { return reader.GetNext(job.login, job.address, oid); };
        FleetDevice result = ReadJob(job, asker);
        const bool isKnown = result.answers.lastStatus != Status::kAnswered ||
                             FactsOf(result.answers).deviceIndex.has_value();
        if (!job.isState || isKnown || ++next == logins.end()) return result;
        job.login = *next;
        job.answers = {};
    }
}

void PrinterFinder::ReadAll(const SweepWatch& watch) {
    constexpr auto kPoll = std::chrono::milliseconds(50);
    const auto mayGoOn = [&] { return !watch.IsStopped(); };
    ShowPhase("starting to read");
    const OwnedHandle job = EndingJob();
    FleetReaders::Work work;
    work.makeReader = [&] { return std::make_unique<ReaderProcess>(logins_, job.Get()); };
    work.read = [&](const FleetDevice& one, Reader* reader, const std::function<bool()>& maySend) {
        return Read(one, *reader, maySend);
    };
    FleetReaders readers(fleet_, mutex_, std::move(work));
    readers.Start(kMaxReaders);
    while (!readers.HasEnded()) {
        // A phase of its own: under Wine, a Ctrl-C while processes start can leave one hanging.
        if (readers.HaveBegun()) ShowPhase("");
        if (!mayGoOn()) readers.Stop();  // a request would take up to 10 s
        std::this_thread::sleep_for(kPoll);
    }
    ShowPhase("");
    // What is left: few devices, or those of readers that could not start or ran out of memory.
    OwnReader here(logins_);
    while (readers.ReadNext(&here, mayGoOn)) continue;
}

std::vector<PrinterLine> PrinterFinder::Printers(const LevelLimits& limits, size_t& others) {
    for (const FleetDevice& device : fleet_.Devices()) {
        scan_.sweeps.push_back(
            {KindOf(logins_[device.login]), AnswerForm::kVariable, false, {}, UtcNow()});
        for (const auto& [oid, answer] : device.answers.values)
            scan_.answers.push_back({scan_.sweeps.size() - 1, "", device.address, answer});
    }
    std::vector<PrinterLine> printers;
    for (const FoundDevice& found : MakeDevices(scan_)) {
        PrinterLine printer;
        printer.facts = *found.facts;
        for (const std::string& address : found.identity.Of(MergeKey::kAddress)) {
            printer.addresses.push_back(address);
            const FleetDevice& device = fleet_.Devices()[devices_.at(address)];
            const auto known = device.answers.values.find(*ParseOidOrName(kPrinterObject));
            if (printer.facts.model.empty() && known != device.answers.values.end())
                printer.facts.model = DeviceText(known->second.bytes);
            if (device.answers.lastStatus != Status::kAnswered) {
                printer.problem = device.answers.lastProblem;
            } else if (!device.isRead) {
                printer.problem = "stopped";
            } else {
                const bool hasState =
                    !printer.facts.printerStatus.empty() || printer.facts.errors.has_value();
                const bool isUnread = AnyOf(device.answers.gaps, [](const Gap& gap) {
                    return gap.object == "prtMarkerSuppliesLevel" ||
                           gap.object == "prtMarkerSuppliesMaxCapacity";
                });
                if (isUnread) printer.problem = "supplies not read";
                if (IsStateUnread(device.answers) && !hasState) printer.problem = "state not read";
                if (printer.facts.gaps.empty()) SetGaps(printer.facts, device.answers.gaps);
            }
        }
        if (!printer.facts.deviceIndex && printer.problem.empty()) {
            ++others;
            continue;
        }
        printer.summary = SummaryOf(printer.facts, limits);
        printers.push_back(std::move(printer));
    }
    SortWorstFirst(printers);
    return printers;
}

}  // namespace vndiscover::host
