#include <vndiscover.h>

#include <algorithm>
#include <array>
#include <map>
#include <mutex>
#include <numeric>
#include <tuple>

#include "cli/commands.h"
#include "device/fleet_readers.h"
#include "model/scan/device_merge.h"
#include "platform/result_window.h"
#include "platform/wide_text.h"
#include "values/ip_address.h"
#include "values/object_names.h"
#include "values/ranges.h"
#include "values/text.h"
#include "values/utc_time.h"

namespace vndiscover::host {
namespace {

constexpr char kExamples[] =
    R"(Sweeps with the communities "public" and "sesame", or those that you give, asks
each printer for its state, then for supplies, serial number, page count and
firmware, and lists the printers, the worst first: critical (it does not print),
attention, unknown (silent, or without a state), fine. --ipv6 sweeps in
addition, and so does each --v3; the SNMPv3 options after it belong to it. The
second user's passwords are in VNDISCOVER_AUTH_PASS_2, VNDISCOVER_PRIV_PASS_2.
A printer that is found in several ways is one line, if it has a serial number
or a MAC address. Several processes of this program read side by side; a printer
that takes over 3 s for a request is read last. Ctrl-C lists what is known then.

Examples:
  vndiscover printers
  vndiscover printers -c public -c office --format csv
  vndiscover printers --v3 -u admin -a SHA256 -x AES --ipv6
  vndiscover printers --v3 -u admin -a SHA256 --v3 -u guest
  vndiscover printers --strict

Exit codes: 0 printers found, 1 none, 2 wrong usage, 3 no request could be sent,
4 with --strict: a printer is not fine.)";

struct PrintersOptions {
    std::vector<std::string> communities;
    V3Options v3;  // of the last --v3
    bool useIPv6 = false;
    bool isStrict = false;
    LevelLimits limits;
    Format format = Format::kText;
};

std::vector<Login> LoginsOf(const PrintersOptions& options, const std::vector<V3Options>& users) {
    std::vector<Login> logins;
    for (const std::string& community : options.communities) {
        CheckLongestCommunity(community);
        logins.push_back({community, nullptr});
    }
    if (logins.empty()) logins = {{"public", nullptr}, {VN_DEFAULT_COMMUNITY, nullptr}};
    for (size_t number = 1; number <= users.size(); ++number)
        logins.push_back({"", ResolveSecurity(users[number - 1], number)});
    return logins;
}

constexpr char kPrinterObject[] = "hrDeviceDescr.1";  // that sweeps ask for

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

// "community 'public'"
std::string NameOf(const Login& login) {
    return login.security ? "the SNMPv3 user '" + ToUtf8(login.security->user) + "'"
                          : "community '" + PlainText(login.community) + "'";
}

// Why the printer was not read whole at this address; empty: it was.
std::string ProblemOf(const FleetDevice& device, const PrinterFacts& facts) {
    const PrinterAnswers& answers = device.answers;
    if (answers.lastStatus != Status::kAnswered) return answers.lastProblem;
    if (!device.isRead) return "stopped";
    const bool hasState = !facts.printerStatus.empty() || facts.errors.has_value();
    if (IsStateUnread(answers) && !hasState) return "state not read";
    const bool isUnread = AnyOf(answers.gaps, [](const Gap& gap) {
        return gap.object == "prtMarkerSuppliesLevel" ||
               gap.object == "prtMarkerSuppliesMaxCapacity";
    });
    return isUnread ? "supplies not read" : "";
}

// Finds the printers of this computer's networks and reads them.
class PrinterFinder {
  public:
    explicit PrinterFinder(std::vector<Login> logins) : logins_(std::move(logins)) {}

    // Sweeps over IPv4, and over IPv6 if `useIPv6`, then reads. Ctrl-C ends it early.
    void Run(bool useIPv6) {
        phase_ = "starting";
        const SweepWatch watch(StopDiscoverSnmp, [this] {
            const std::lock_guard<std::mutex> lock(mutex_);
            return phase_.empty() ? fleet_.Progress() : phase_;
        });
        for (const bool isIPv6 : {false, true}) {
            for (size_t login = 0; login < logins_.size() && (useIPv6 || !isIPv6); ++login) {
                if (!watch.IsStopped()) Sweep(login, isIPv6, kPrinterObject);
                // Over SNMPv3 a device without that object would not be reported.
                if (!watch.IsStopped() && logins_[login].security)
                    Sweep(login, isIPv6, "sysName.0");
            }
        }
        ReadAll(watch);
        FindRefusals(watch);
        isStopped = watch.IsStopped();
    }

    // What was found, the worst first. Called once, after Run. Counts other devices in `others`.
    std::vector<PrinterLine> Printers(const LevelLimits& limits, size_t& others) {
        for (const FleetDevice& device : fleet_.Devices()) {
            scan_.sweeps.push_back(
                {KindOf(logins_[device.login]), AnswerForm::kVariable, false, {}, UtcNow()});
            scan_.sweeps.back().isCut = device.answers.lastStatus != Status::kAnswered;
            for (const auto& [oid, answer] : device.answers.values)
                scan_.answers.push_back({scan_.sweeps.size() - 1, "", device.address, answer});
        }
        std::vector<PrinterLine> printers;
        for (const FoundDevice& found : MakeDevices(scan_)) {
            PrinterLine printer;
            printer.facts = *found.facts;
            const auto& addresses = found.identity.Of(MergeKey::kAddress);
            printer.addresses.assign(addresses.begin(), addresses.end());
            AddReadings(printer);
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

    bool isStopped = false;  // by Ctrl-C
    bool wasSent = false;    // any request of a sweep
    // SNMPv3 users that a device refuses: "the SNMPv3 user 'x': wrong authentication password".
    std::vector<std::string> refusals;

  private:
    const FleetDevice& DeviceAt(const std::string& address) const {
        return fleet_.Devices()[devices_.at(address)];
    }

    // What the readings at all its addresses say. If the printer was read whole at one of them,
    // only such addresses count: it may have fallen silent at another one.
    void AddReadings(PrinterLine& printer) const {
        const auto isWholeAt = [&](const std::string& address) {
            const FleetDevice& device = DeviceAt(address);
            return device.isRead && device.answers.lastStatus == Status::kAnswered;
        };
        const bool isWhole = AnyOf(printer.addresses, isWholeAt);
        for (const std::string& address : printer.addresses) {
            const PrinterAnswers& answers = DeviceAt(address).answers;
            const auto known = answers.values.find(*ParseOidOrName(kPrinterObject));
            if (printer.facts.model.empty() && known != answers.values.end())
                printer.facts.model = DeviceText(known->second.bytes);
            if (isWhole && !isWholeAt(address)) continue;
            const std::string problem = ProblemOf(DeviceAt(address), printer.facts);
            if (!problem.empty()) printer.problem = problem;
            if (isWhole && printer.facts.gaps.empty()) SetGaps(printer.facts, answers.gaps);
        }
    }

    // Over SNMPv3 a device that refuses is not found, so one that was found by another login is
    // asked.
    void FindRefusals(const SweepWatch& watch) {
        OwnReader reader(logins_);
        for (size_t login = 0; login < logins_.size() && !devices_.empty(); ++login) {
            const bool isAnswered =
                AnyOf(answeredBy_, [=](const auto& logins) { return Contains(logins, login); });
            if (!logins_[login].security || isAnswered || watch.IsStopped()) continue;
            ShowPhase("asking why " + NameOf(logins_[login]) + " gets no answer");
            const std::string& address = fleet_.Devices().front().address;
            const Answer answer = reader.GetNext(login, address, OidOf("sysDescr"));
            // Silence may be that of a device without SNMPv3.
            if (answer.status == Status::kRefused || answer.status == Status::kOnlyDiscovered)
                refusals.push_back(
                    address + ", " + NameOf(logins_[login]) + ": " +
                    (answer.status == Status::kRefused ? answer.note : Problem(answer)));
        }
    }

    void ShowPhase(std::string phase) {
        const std::lock_guard<std::mutex> lock(mutex_);
        phase_ = std::move(phase);
    }

    void Sweep(size_t login, bool useIPv6, const char* object) {
        const Login& by = logins_[login];
        const Oid oid = *ParseOidOrName(object);
        const SweepKind kind = KindOf(by);
        scan_.sweeps.push_back({kind, FormOf(kind, oid), useIPv6, oid, UtcNow()});
        ShowPhase("sweep with " + NameOf(by) + (useIPv6 ? " over IPv6" : ""));
        const ResultWindow window([&](const char* address, const char* value) {
            scan_.answers.push_back({scan_.sweeps.size() - 1, UtcNow(), address, Received(value)});
            const auto [device, isNew] = devices_.try_emplace(address, devices_.size());
            if (isNew) answeredBy_.emplace_back();
            IndexOrAppend(answeredBy_[device->second], login);
            if (!isNew) return;
            std::map<Oid, Answer> known;
            if (!by.security && *value) known[oid] = AnsweredWith(oid, kOctetString, value);
            const std::lock_guard<std::mutex> lock(mutex_);
            fleet_.Add(address, login, std::move(known));
        });
        wasSent |= RunSweep(window.Handle(), ResultWindow::kMessage, SweepFor(by, oid, useIPv6));
        window.Rethrow();
    }

    // A device that is no printer to this login is read again by the next login that it has
    // answered, since one login may see less than another.
    FleetDevice Read(FleetDevice job, Reader& reader, const std::function<bool()>& maySend) const {
        const std::vector<size_t>& logins = answeredBy_[job.index];
        for (auto next = std::find(logins.begin(), logins.end(), job.login);;) {
            Asker asker;
            asker.isV3 = logins_[job.login].security != nullptr;
            asker.mayGoOn = maySend;
            asker.getNext = [&](const Oid& oid) {
                return reader.GetNext(job.login, job.address, oid);
            };
            FleetDevice result = ReadJob(job, asker);
            if (!job.isState || result.answers.lastStatus != Status::kAnswered ||
                HasPrinter(result.answers) || ++next == logins.end())
                return result;
            job.login = *next;
            job.answers = {};
        }
    }

    void ReadAll(const SweepWatch& watch) {
        constexpr auto kPoll = std::chrono::milliseconds(50);
        const auto mayGoOn = [&] { return !watch.IsStopped(); };
        ShowPhase("starting to read");
        const OwnedHandle job = EndingJob();
        FleetReaders::Work work;
        work.makeReader = [&] { return std::make_unique<ReaderProcess>(logins_, job.Get()); };
        work.read = [this](const FleetDevice& one, Reader* reader, const auto& maySend) {
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

    const std::vector<Login> logins_;
    Scan scan_;
    std::map<std::string, size_t> devices_;        // of the fleet, by address
    std::vector<std::vector<size_t>> answeredBy_;  // of each of these, the logins, in their order

    std::mutex mutex_;  // for what follows
    Fleet fleet_;
    std::string phase_;  // empty: reading
};

constexpr size_t kColumns = 5;
using Cells = std::array<std::string, kColumns>;

Cells CellsOf(const PrinterLine& printer) {
    const PrinterSummary& summary = printer.summary;
    const bool isFine = summary.severity == Severity::kFine;
    const std::string unread = printer.problem.empty() ? "" : "(" + printer.problem + ")";
    const std::string state =
        summary.state.empty() ? printer.problem : Joined({summary.state, unread}, " ");
    return {Joined({isFine ? "" : SeverityName(summary.severity), state}, ": "), summary.supply,
            printer.facts.name, printer.facts.model, Joined(printer.addresses)};
}

std::string Cut(const std::string& text, size_t width) {
    if (CharacterCount(text) <= width) return text;
    size_t bytes = 0;
    for (size_t left = width - 2; left > 0; --left)
        bytes += FirstCharacter(std::string_view(text).substr(bytes)).bytes;
    return text.substr(0, bytes) + "..";
}

// One line each, of at most `width` characters if the columns' contents can be cut to it.
std::string PrintersText(const std::vector<PrinterLine>& printers, size_t width) {
    std::vector<Cells> rows = {{"STATE", "LOWEST SUPPLY", "NAME", "MODEL", "ADDRESS"}};
    for (const PrinterLine& printer : printers) rows.push_back(CellsOf(printer));
    std::array<size_t, kColumns> widths = {};
    for (const Cells& row : rows) {
        for (size_t i = 0; i < kColumns; ++i)
            widths[i] = std::max(widths[i], CharacterCount(row[i]));
    }
    // The widest columns are cut; addresses stay whole.
    constexpr size_t kLeast = 8;
    for (size_t sum = std::accumulate(widths.begin(), widths.end(), 2 * (kColumns - 1));
         sum > width; --sum) {
        size_t& widest = *std::max_element(widths.begin(), widths.end() - 1);
        if (widest <= kLeast) break;
        --widest;
    }
    std::string text;
    for (const Cells& row : rows) {
        for (size_t i = 0; i + 1 < kColumns; ++i)
            text += Padded(Cut(row[i], widths[i]), widths[i] + 2);
        text += row[kColumns - 1] + "\n";
    }
    return text;
}

void WarnOf(const PrinterFinder& finder, const std::vector<Login>& logins,
            const std::vector<PrinterLine>& printers, size_t others) {
    const size_t incomplete =
        CountIf(printers, [](const PrinterLine& printer) { return !printer.problem.empty(); });
    if (incomplete > 0)
        Warn("printers that could not be read whole: " + std::to_string(incomplete));
    if (others > 0) Warn("addresses that answered but are no printers: " + std::to_string(others));
    for (const std::string& refusal : finder.refusals) Warn(refusal);
    if (finder.isStopped) return;
    WarnAtEnd(false, printers.size(),
              finder.wasSent ? "no printer answered " + JoinedAs(logins, NameOf, " and ") +
                                   " for " + kPrinterObject + kAskAsOthers
                             : kNothingSent);
}

int RunPrinters(const PrintersOptions& options, const std::vector<V3Options>& users) {
    const std::vector<Login> logins = LoginsOf(options, users);
    PrinterFinder finder(logins);
    finder.Run(options.useIPv6);
    if (finder.isStopped) Warn("stopped: the list is not complete");
    size_t others = 0;
    const std::vector<PrinterLine> printers = finder.Printers(options.limits, others);
    if (options.format == Format::kJson) Print(PrintersJson(printers));
    if (options.format == Format::kCsv) Print(PrintersCsv(printers));
    if (options.format == Format::kText && !printers.empty())
        Print(PrintersText(printers, OutputWidth(SIZE_MAX)));
    WarnOf(finder, logins, printers, others);
    if (printers.empty()) return finder.wasSent || finder.isStopped ? kNone : kSendFailed;
    const bool isFine = AllOf(printers, [](const PrinterLine& printer) {
        return printer.summary.severity == Severity::kFine && printer.problem.empty();
    });
    return options.isStrict && !isFine ? kNeedsAttention : kFound;
}

}  // namespace

void AddPrintersCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("printers", "List the printers, the worst first");
    auto options = std::make_shared<PrintersOptions>();
    MustNotBeEmpty(command
                       ->add_option("-c,--community", options->communities,
                                    "Read community; may be given again [public, sesame]")
                       ->type_name("NAME")
                       ->allow_extra_args(false));
    command->add_flag("-6,--ipv6", options->useIPv6, "Also sweep over IPv6 (link-local)");
    command->add_flag("--strict", options->isStrict, "Exit with 4 if a printer is not fine");
    command->add_option("--low", options->limits.low, "Level that needs attention, below [10]")
        ->type_name("PERCENT")
        ->check(CLI::Range(0, 100).description(""));
    AddFormat(*command, options->format, {"text", "json", "csv"});
    AddV3Options(*command, options->v3);
    AllowSeveralUsers(*command);
    command->footer(kExamples);
    command->callback(
        [options, command, &exitCode] { exitCode = RunPrinters(*options, UsersOf(*command)); });
}

}  // namespace vndiscover::host
