#include <vndiscover.h>

#include <condition_variable>
#include <list>
#include <map>
#include <mutex>
#include <thread>

#include "cli/commands.h"
#include "cli/fact_json.h"
#include "cli/printers_writer.h"
#include "device/ask_process.h"
#include "device/device.h"
#include "device/sweeps.h"
#include "model/asking/json_request.h"
#include "model/printer/fleet.h"
#include "model/scan/device_merge.h"
#include "platform/console.h"
#include "platform/result_window.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/object_names.h"
#include "values/plain_text.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr char kObject[] = "hrDeviceDescr.1";
constexpr char kAskOption[] = "--ask-for-another-process";
constexpr size_t kMaxProcesses = 6;
constexpr size_t kManyPrinters = 4;  // fewer are read by this process alone
constexpr auto kPoll = std::chrono::milliseconds(50);

constexpr char kExamples[] =
    R"(Sweeps with the communities "public" and "sesame", or those that you give, asks
each printer for its state, then for supplies, serial number, page count and
firmware, and lists the printers, the worst first: critical (it does not print),
attention, unknown (silent, say), fine. A printer that takes over 3 s for a
request is read last. --v3 and --ipv6 sweep in addition. A printer that is found
in several ways is one line. Ctrl-C lists what is known by then.

Several processes of this program read side by side.

Examples:
  vndiscover printers
  vndiscover printers -c public -c office --format csv
  vndiscover printers --v3 -u admin -a SHA256 -x AES --ipv6
  vndiscover printers --strict

Exit codes: 0 printers found, 1 none, 2 wrong usage, 4 with --strict: a printer
is not fine.)";

enum class PrintersFormat { kText, kJson, kCsv };

struct PrintersOptions {
    std::vector<std::string> communities;
    V3Options v3;
    bool useIPv6 = false;
    bool isStrict = false;
    bool isForOther = false;  // asks devices for the process that started this one
    PrintersFormat format = PrintersFormat::kText;
};

struct Login {
    std::string community;                     // if there is no user
    std::shared_ptr<const Security> security;  // null: SNMPv1
};

std::vector<Login> LoginsOf(const PrintersOptions& options) {
    std::vector<Login> logins;
    for (const std::string& community : options.communities) {
        if (ToAnsi(community).size() > VN_COMMUNITY_MAX)
            throw CLI::ValidationError("--community", "255 bytes at most");
        logins.push_back({community, nullptr});
    }
    if (logins.empty()) logins = {{"public", nullptr}, {VN_DEFAULT_COMMUNITY, nullptr}};
    if (!options.v3.isOn) return logins;
    logins.push_back({"", ResolveSecurity(options.v3)});
    // For the processes that are started with the same command line.
    const Security& user = *logins.back().security;
    if (user.useAuth) SetEnvironmentVariableW(kAuthVariable, user.authPassword.Get());
    if (user.usePriv) SetEnvironmentVariableW(kPrivVariable, user.privPassword.Get());
    return logins;
}

std::string NameOf(const Login& login) {
    return login.security ? "the SNMPv3 user '" + ToUtf8(login.security->user) + "'"
                          : "community '" + PlainText(login.community) + "'";
}

// Asks in this process. Keeps the device that was asked last, which may have learned how it is
// reached.
class DirectAsker {
  public:
    explicit DirectAsker(const std::vector<Login>& logins) : logins_(logins) {}
    Answer operator()(size_t login, const std::string& address, const Oid& oid) {
        const Login& by = logins_.at(login);
        if (!device_ || &by != by_ || address != address_) {
            device_.emplace(address, ToAnsi(by.community), "");
            device_->Use(by.security);
            by_ = &by;
            address_ = address;
        }
        return device_->GetNext(oid);
    }

  private:
    const std::vector<Login>& logins_;
    std::optional<Device> device_;
    const Login* by_ = nullptr;
    std::string address_;
};

// A sweep and the reading after it.
class Finder {
  public:
    explicit Finder(std::vector<Login> logins) : logins_(std::move(logins)) {}

    // False: stopped.
    bool Run(bool useIPv6) {
        const SweepWatch watch(StopDiscoverSnmp, [this] {
            const std::lock_guard<std::mutex> lock(mutex_);
            return phase_.empty() ? fleet_.Progress() : phase_;
        });
        for (int isIPv6 = 0; isIPv6 <= (useIPv6 ? 1 : 0); ++isIPv6) {
            for (size_t login = 0; login < logins_.size() && !watch.IsStopped(); ++login)
                Sweep(login, isIPv6 != 0);
        }
        SetPhase("");
        ReadAll(watch);
        return !watch.IsStopped();
    }

    std::vector<PrinterLine> Printers();
    // That are no printers; known after Printers.
    size_t OtherDevices() const { return others_; }

  private:
    void SetPhase(const std::string& phase) {
        const std::lock_guard<std::mutex> lock(mutex_);
        phase_ = phase;
    }

    void Sweep(size_t login, bool useIPv6);
    void AddDevice(size_t login, const char* address, const char* value);
    void ReadAll(const SweepWatch& watch);
    void Work(const AskNext& ask, const std::function<bool()>& mayGoOn);

    const std::vector<Login> logins_;
    Scan scan_;
    std::map<std::string, size_t> devices_;  // of the fleet, by address
    size_t others_ = 0;

    std::mutex mutex_;  // for what follows
    std::condition_variable changed_;
    Fleet fleet_;
    std::string phase_ = "starting";
    size_t working_ = 0;  // threads
};

void Finder::Sweep(size_t login, bool useIPv6) {
    const Login& by = logins_[login];
    const Oid oid = *ParseOidOrName(kObject);
    const SweepKind kind = by.security ? SweepKind::kSnmpV3 : SweepKind::kSnmpV1;
    scan_.sweeps.push_back({kind, FormOf(kind, oid), useIPv6, oid, UtcNow()});
    SnmpSweep sweep;
    sweep.useIPv6 = useIPv6;
    sweep.community = ToWide(by.community);
    sweep.oid = ToWide(OidToText(oid));
    sweep.security = by.security.get();
    if (by.security) sweep.request = ToWide(RequestFor(OidToText(oid)));
    SetPhase("sweep with " + NameOf(by) + (useIPv6 ? " over IPv6" : ""));
    const ResultWindow window(
        [&](const char* address, const char* value) { AddDevice(login, address, value); });
    RunSweep(window.Handle(), ResultWindow::kMessage, sweep);
}

void Finder::AddDevice(size_t login, const char* address, const char* value) {
    const Oid oid = scan_.sweeps.back().oid;
    scan_.answers.push_back({scan_.sweeps.size() - 1, UtcNow(), address, Received(value)});
    if (!devices_.try_emplace(address, devices_.size()).second) return;
    std::map<Oid, Answer> known;
    if (!logins_[login].security && *value) known[oid] = AnsweredWith(oid, kOctetString, value);
    const std::lock_guard<std::mutex> lock(mutex_);
    fleet_.Add(address, login, std::move(known));
}

// Takes jobs until there are none.
void Finder::Work(const AskNext& ask, const std::function<bool()>& mayGoOn) {
    std::unique_lock<std::mutex> lock(mutex_);
    while (mayGoOn() && !fleet_.IsOver()) {
        const auto job = fleet_.Next();
        if (!job) {
            changed_.wait_for(lock, kPoll);
            continue;
        }
        lock.unlock();
        Asker asker;
        asker.isV3 = logins_[job->login].security != nullptr;
        asker.mayGoOn = mayGoOn;
        asker.getNext = [&](const Oid& oid) { return ask(job->login, job->address, oid); };
        FleetResult result = ReadJob(*job, asker);
        lock.lock();
        if (mayGoOn()) {
            fleet_.Done(*job, std::move(result));
        } else {
            fleet_.Return(*job);
        }
        changed_.notify_all();
    }
    --working_;
}

// A job that ends its processes with this one, however that ends.
OwnedHandle EndingJob() {
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

void Finder::ReadAll(const SweepWatch& watch) {
    const auto mayGoOn = [&] { return !watch.IsStopped(); };
    const size_t count =
        devices_.size() < kManyPrinters ? 0 : std::min(kMaxProcesses, devices_.size() / 2);
    const OwnedHandle job = EndingJob();
    std::list<AskProcess> processes;
    std::vector<std::thread> threads;
    for (size_t i = 0; i < count && mayGoOn(); ++i) {
        AskProcess& process = processes.emplace_back(ToWide(kAskOption).c_str(), job.Get());
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            ++working_;
        }
        threads.emplace_back([this, &process, &mayGoOn] {
            Work([&](size_t login, const std::string& address,
                     const Oid& oid) { return process.GetNext(login, address, oid); },
                 [&] { return process.IsAlive() && mayGoOn(); });
        });
    }
    {
        std::unique_lock<std::mutex> lock(mutex_);
        while (working_ > 0 && mayGoOn()) changed_.wait_for(lock, kPoll);
    }
    if (!mayGoOn()) {  // a request would take up to 10 s
        for (AskProcess& process : processes) process.End();
    }
    for (std::thread& thread : threads) thread.join();
    // What is left: few devices, or the processes could not be started.
    ++working_;
    Work(DirectAsker(logins_), mayGoOn);
}

std::vector<PrinterLine> Finder::Printers() {
    for (size_t login = 0; login < logins_.size(); ++login) {
        const SweepKind kind = logins_[login].security ? SweepKind::kSnmpV3 : SweepKind::kSnmpV1;
        scan_.sweeps.push_back({kind, AnswerForm::kVariable, false, {}, UtcNow()});
        for (const FleetDevice& device : fleet_.Devices()) {
            if (device.login != login) continue;
            for (const auto& [oid, answer] : device.answers.values)
                scan_.answers.push_back({scan_.sweeps.size() - 1, "", device.address, answer});
        }
    }
    std::vector<PrinterLine> printers;
    for (const FoundDevice& found : MakeDevices(scan_)) {
        PrinterLine printer;
        printer.facts = *found.facts;
        for (const std::string& address : found.identity.Of(MergeKey::kAddress)) {
            printer.addresses.push_back(address);
            const FleetDevice& device = fleet_.Devices()[devices_.at(address)];
            const auto known = device.answers.values.find(*ParseOidOrName(kObject));
            if (printer.facts.model.empty() && known != device.answers.values.end())
                printer.facts.model = DeviceText(known->second.bytes, 0);
            if (device.answers.lastStatus != Status::kAnswered) {
                printer.problem = device.answers.lastProblem;
            } else if (!device.isRead) {
                printer.problem = "stopped";
            }
        }
        if (!printer.facts.deviceIndex && printer.problem.empty()) {
            ++others_;
            continue;
        }
        printer.summary = SummaryOf(printer.facts);
        printers.push_back(std::move(printer));
    }
    SortWorstFirst(printers);
    return printers;
}

std::string AskedText(const std::vector<Login>& logins) {
    std::vector<std::string> names;
    for (const Login& login : logins) names.push_back(NameOf(login));
    return Joined(names, " and ") + " for " + kObject;
}

int RunPrinters(const PrintersOptions& options) {
    std::vector<Login> logins = LoginsOf(options);
    if (options.isForOther) {
        ServeAskProcess(DirectAsker(logins));
        return kFound;
    }
    Finder finder(logins);
    if (!finder.Run(options.useIPv6)) Warn("stopped: the list is not complete");
    const std::vector<PrinterLine> printers = finder.Printers();
    if (options.format == PrintersFormat::kJson) Print(PrintersJson(printers));
    if (options.format == PrintersFormat::kCsv) Print(PrintersCsv(printers));
    if (options.format == PrintersFormat::kText && !printers.empty())
        Print(PrintersText(printers, OutputWidth(SIZE_MAX)));
    const auto incomplete =
        std::count_if(printers.begin(), printers.end(),
                      [](const PrinterLine& printer) { return !printer.problem.empty(); });
    if (incomplete > 0)
        Warn("printers that could not be read whole: " + std::to_string(incomplete));
    if (finder.OtherDevices() > 0)
        Warn("devices that answered but are no printers: " + std::to_string(finder.OtherDevices()));
    if (printers.empty()) {
        Warn("no printer answered " + AskedText(logins) +
             ". 'vndiscover printers -c COMMUNITY' and 'vndiscover printers --v3 -u USER' ask "
             "otherwise" +
             kDoctorHint);
        return kNone;
    }
    const bool isFine = std::all_of(printers.begin(), printers.end(), [](const auto& printer) {
        return printer.summary.severity == Severity::kFine;
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
    AddFormat<PrintersFormat>(*command, options->format,
                              {{"text", PrintersFormat::kText},
                               {"json", PrintersFormat::kJson},
                               {"csv", PrintersFormat::kCsv}});
    AddV3Options(*command, options->v3);
    command->get_option("--v3")->description("Also sweep as this SNMPv3 user; needs -u");
    command->add_flag(kAskOption, options->isForOther)->group("");
    command->footer(kExamples);
    command->callback([options, &exitCode] { exitCode = RunPrinters(*options); });
}

}  // namespace vndiscover::host
