#include <vndiscover.h>

#include <cjson/cJSON.h>

#include "cli/commands.h"
#include "model/asking/walk.h"
#include "model/scan/scan.h"
#include "platform/this_computer.h"
#include "values/object_names.h"
#include "values/text.h"
#include "values/utc_time.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

constexpr char kGetExamples[] =
    R"(Values are shown by their type, and in hex if text is not printable. "no value"
means that the device answered but has no such variable: after a name comes an
instance, 0 if there is only one. About ninety standard objects have names:
system, interfaces, host resources, printers.

Examples:
  vndiscover get 192.168.1.20 .1.3.6.1.2.1.1.5.0 .1.3.6.1.2.1.1.3.0 -c public
  vndiscover get 192.168.1.20 sysName.0 hrPrinterStatus.1 --names
  vndiscover get 192.168.1.20 .1.3.6.1.2.1.1.5.0 --format json
  vndiscover get 192.168.1.20 .1.3.6.1.2.1.1.5.0 --v3 -u admin -a SHA256 -x AES

Exit codes: 0 every OID was answered, 1 no answer, 2 wrong usage, 3 a request
could not be sent.)";

constexpr char kGetNextExamples[] = R"(Shows the variable that follows each OID on the device.

Examples:
  vndiscover getnext 192.168.1.20 .1.3.6.1.2.1.1 --community public
  vndiscover getnext 192.168.1.20 .1.3.6.1.2.1.2 --v3 -u admin -a SHA1 -x DES

Exit codes: 0 every OID was answered, 1 no answer, 2 wrong usage, 3 a request
could not be sent.)";

constexpr char kSetExamples[] =
    R"(A device that refuses answers like one that accepts: --verify reads the value
back. Types: integer (i), string (s), hex (x), oid (o), ipaddress (a),
counter (c), gauge (u), timeticks (t), null (n).

Examples:
  vndiscover set 192.168.1.20 .1.3.6.1.2.1.1.6.0 string "Room 2" -w private
  vndiscover set 192.168.1.20 .1.3.6.1.4.1.5963.1.1.0 i -5 --verify
  vndiscover set 192.168.1.20 .1.3.6.1.4.1.5963.1.2.0 x "00 1B 44 11"

Exit codes: 0 answered (and verified), 1 no answer or not verified, 2 wrong
usage, 3 the request could not be sent.)";

constexpr char kWalkExamples[] =
    R"(Without ROOT the walk starts at .1.3.6.1.2.1. It ends with the subtree or the
device's variables, or when the OID of an answer is not greater than the one
requested. A variable that cannot be read, since it is too long for SNMPv1 or
the device does not answer for it, is skipped, and the walk says so. OIDs with a
number over 16383 cannot be requested: a walk that reaches one stops there.

Examples:
  vndiscover walk 192.168.1.20
  vndiscover walk 192.168.1.20 .1.3.6.1.2.1.25.3 -c public --format json
  vndiscover walk 192.168.1.20 .1.3.6.1.2.1.43 --names
  vndiscover walk 192.168.1.20 .1.3.6.1.2.1.43 --v3 -u admin -a SHA256 -x AES

Exit codes: 0 the walk came to its end, 1 no answer, no variable or stopped
early, 2 wrong usage, 3 a request could not be sent.)";

constexpr char kInfoExamples[] =
    R"(Asks for the device information OID, .1.3.6.1.4.1.5963.43.5.1.1.1.1.

Examples:
  vndiscover info 192.168.1.20
  vndiscover info fe80::215:99ff:fe01:203 --community public

Exit codes: 0 answered, 1 no answer, 2 wrong usage, 3 the request could not be
sent.)";

constexpr char kPrinterExamples[] =
    R"(Reads the standard variables of a printer and explains them: model, serial
number, state, alerts, page counts, supplies, trays, network interfaces. On a
console "!!" marks what is critical, "!" what needs attention. What the device
does not provide is left out; what could not be read is listed with the reason.
A device that stops answering is not asked any further; no request is sent after
the first two minutes.

Examples:
  vndiscover printer 192.168.1.20
  vndiscover printer 192.168.1.20 --community public --format json
  vndiscover printer 192.168.1.20 --v3 -u admin -a SHA256 -x AES

Exit codes: 0 a printer, except for what the report calls not read, 1 no answer,
no printer or cut short, 2 wrong usage, 3 a request could not be sent.)";

constexpr char kNamesHelp[] = "Show names, and words for numbers and bits";

struct Options : DeviceOptions {
    std::string root = ".1.3.6.1.2.1", oid, type, value, writeCommunity;
    std::vector<std::string> oids;
    bool mustVerify = false;
    bool withNames = false;
    bool isVerbose = false;
};

// Throws CLI::ValidationError. May prompt for passwords.
Device OpenDevice(const Options& options) {
    if (!options.v3.isOn) CheckRequest("--community", options.community, kSystem);
    const Login login = {options.community, ResolveSecurity(options.v3)};
    WarnIfUnknown(options.host);
    return {login, NumericHost(options.host)};
}

// Counts requests for the status line; after a Ctrl-C, none is sent. The device must outlive it.
class WatchedAsker {
  public:
    WatchedAsker(const Device& device, const std::string& host)
        : asker(AskerOf(device)), watch_(StopDiscoverSnmp, [this, host] {
              return "reading " + host + ": " + std::to_string(requests_) + " requests";
          }) {
        asker.mayGoOn = [this] { return !IsStopped(); };
        asker.getNext = [this, ask = asker.getNext](const Oid& oid) {
            Count();
            return ask(oid);
        };
    }
    void Count() { ++requests_; }
    bool IsStopped() const { return watch_.IsStopped(); }

    Asker asker;

  private:
    std::atomic<size_t> requests_{0};
    const SweepWatch watch_;  // last: it shows the others
};

int ExitCodeOf(Status status) {
    if (status == Status::kSendFailed) return kSendFailed;
    return status == Status::kAnswered ? kFound : kNone;
}

Oid ParsedOid(const char* argument, const std::string& text) {
    const auto oid = ParseOidOrName(text);
    if (!oid) throw CLI::ValidationError(argument, NotAnOid(text));
    return *oid;
}

void CheckOid(const Options& options, const char* argument, const Oid& oid) {
    if (!FitsRequest(oid))
        throw CLI::ValidationError(argument, OidToText(oid) + " is too short or too long");
    if (!options.v3.isOn) {
        // Asked for as well, to see whether the device answers at all.
        CheckRequest("--community", options.community, OidOf("sysUpTime"));
        CheckRequest(argument, options.community, oid);
    }
    // SNMPv3 requests use the same OID encoder.
    if (IsMisencoded(oid))
        Warn(OidToText(oid) + " has a number over 16383: the device is asked for another OID");
}

void Show(VariableWriter& writer, const Answer& answer, const std::string& before = "") {
    Print(writer.Row(answer));
    if (answer.status != Status::kAnswered)
        Warn(before + OidToText(answer.oid) + ": " + Problem(answer));
}

int RunEach(const Options& options, Answer (Device::*ask)(const Oid&) const) {
    std::vector<Oid> oids;
    for (const std::string& text : options.oids) {
        oids.push_back(ParsedOid("OID", text));
        CheckOid(options, "OID", oids.back());
    }
    const Device device = OpenDevice(options);
    VariableWriter writer(options.format == Format::kJson, options.withNames);
    int exitCode = kFound;
    Status silence = Status::kAnswered;
    bool hasStopped = false;
    WatchedAsker watched(device, options.host);
    PatientAsker patient(watched.asker);
    const auto request = [&](const Oid& oid) {
        watched.Count();
        return (device.*ask)(oid);
    };
    for (const Oid& oid : oids) {
        hasStopped = watched.IsStopped();
        if (hasStopped) break;
        const bool isSilent = silence == Status::kNoAnswer || silence == Status::kOnlyDiscovered;
        const Answer answer = isSilent ? Failed(silence, oid)  // it answers nothing
                                       : patient.Ask(oid, [&] { return request(oid); });
        silence = answer.status;
        hasStopped = watched.IsStopped() && silence != Status::kAnswered;
        if (hasStopped) break;
        Show(writer, answer);
        // A failed send outranks a missing answer.
        exitCode = std::max(exitCode, ExitCodeOf(answer.status));
    }
    Print(writer.End());
    if (!hasStopped) return exitCode;
    Warn("stopped");
    return std::max<int>(exitCode, kNone);
}

int RunGet(const Options& options) { return RunEach(options, &Device::Get); }
int RunGetNext(const Options& options) { return RunEach(options, &Device::GetNext); }

int Verify(const Device& device, const Oid& oid, const SetValue& value) {
    const Asker asker = AskerOf(device);
    const Answer answer = PatientAsker(asker, true).Ask(oid, [&] { return device.Get(oid); });
    const bool isAnswered = answer.status == Status::kAnswered;
    if (isAnswered && answer.type == value.type && answer.bytes == value.bytes) return kFound;
    if (isAnswered) {
        const std::string shown = FormatValue(answer.type, answer.bytes);
        Warn("not set: " + OidToText(oid) + " has " +
             (IsNoValue(answer.type) ? shown : "the " + TypeName(answer.type) + " " + shown));
    } else {
        Warn("not verified: reading " + OidToText(oid) + ": " + Problem(answer));
    }
    return kNone;
}

int RunSet(const Options& options) {
    const Oid oid = ParsedOid("OID", options.oid);
    std::string problem;
    const auto value = ParseSetValue(options.type, options.value, problem);
    if (!value) throw CLI::ValidationError(problem[0] == '\'' ? "TYPE" : "VALUE", problem);
    CheckOid(options, "OID", oid);
    CheckRequest("--write-community", options.writeCommunity, oid);
    CheckRequest("VALUE", options.writeCommunity, oid, value->bytes.size());
    const Device device = OpenDevice(options);
    VariableWriter writer(options.format == Format::kJson, options.withNames);
    const Answer answer = device.Set(oid, *value, options.writeCommunity);
    Show(writer, answer);
    Print(writer.End());
    const int exitCode = ExitCodeOf(answer.status);
    return exitCode == kFound && options.mustVerify ? Verify(device, oid, *value) : exitCode;
}

// Reports why a walk stops and returns its exit code. Show has reported missing answers.
int FinishWalk(const WalkEnd& end) {
    const std::string at = OidToText(end.at);
    if (end.skipped > 0) {
        Warn(end.SkippedText() + (end.skipped == 1 ? " variable was" : " variables were") +
             " skipped");
    }
    if (end.last.status != Status::kAnswered) return ExitCodeOf(end.last.status);
    if (end.step == WalkStep::kLastReachable) {
        Warn("stopped at " + at +
             ": it has a number over 16383, or is too long to ask for what follows");
        return kNone;
    }
    if (end.step == WalkStep::kNotIncreasing) {
        Warn("stopped: OID not increasing: the device answers " + at +
             " with one that is not greater");
        return kNone;
    }
    if (end.variables + end.skipped == 0 && !end.edge) Warn("the device has no variables there");
    return end.variables > 0 ? kFound : kNone;
}

int RunWalk(const Options& options) {
    const Oid root = ParsedOid("ROOT", options.root);
    CheckOid(options, "ROOT", WalkStart(root));
    const Device device = OpenDevice(options);
    VariableWriter writer(options.format == Format::kJson, options.withNames);
    const WatchedAsker watched(device, options.host);
    const WalkEnd end = WalkSubtree(
        watched.asker, root,
        // Returns false if the reader of a pipe has gone.
        [&](const Answer& answer) { return Print(writer.Row(answer)); },
        [&](const Answer& failure) { Show(writer, failure, "skipped what follows "); });
    if (end.edge) Show(writer, *end.edge, "not known to be the end: what follows ");
    if (end.last.status != Status::kAnswered && !watched.IsStopped()) Show(writer, end.last);
    Print(writer.End());
    if (!watched.IsStopped()) return FinishWalk(end);
    Warn("stopped");
    return kNone;
}

int RunInfo(const Options& options) {
    CheckRequest("--community", options.community, DefaultDiscoveryOid());
    const Device device = OpenDevice(options);
    auto information = device.Information();
    Answer answer;
    if (!information) answer = device.Get(DefaultDiscoveryOid());  // says why
    const bool isText = answer.status == Status::kAnswered && answer.type == kOctetString;
    if (isText && !answer.bytes.empty()) information = answer.bytes;  // the former one was lost
    if (options.format == Format::kJson) {
        const JsonItem element(cJSON_CreateObject());
        AddText(element.get(), "host", options.host);
        if (information) {
            AddText(element.get(), "information", ShownValue(*information));
        } else {
            cJSON_AddNullToObject(element.get(), "information");
        }
        Print(CompactJson(element.get()) + "\n");
    } else if (information) {
        Print(ShownValue(*information) + "\n");
    }
    if (information) return kFound;
    const bool isAnswered = answer.status == Status::kAnswered;
    Warn(isAnswered && IsNoValue(answer.type) ? options.host + " answered, without this object"
         : isAnswered                         ? options.host + " answered, but with no text"
         : answer.status == Status::kNoAnswer ? "no answer from " + options.host
                                              : options.host + ": " + Problem(answer));
    return std::max<int>(kNone, ExitCodeOf(answer.status));
}

int RunPrinter(const Options& options) {
    if (!options.v3.isOn) CheckLongestCommunity(options.community);
    const Device device = OpenDevice(options);
    const std::string start = UtcNow();
    PrinterAnswers answers;
    {
        const WatchedAsker watched(device, options.host);
        answers = ReadPrinter(watched.asker, true);
    }
    PrinterFacts facts = FactsOf(answers);
    facts.readTime = facts.upTicksTime = start;
    if (options.format == Format::kJson) Print(PrinterJson(facts, options.host));
    if (answers.values.empty()) {
        Warn(options.host + ": " +
             (answers.gaps.empty() ? "no values" : answers.gaps.front().reason));
        return std::max<int>(kNone, ExitCodeOf(answers.lastStatus));
    }
    if (options.format == Format::kText) {
        Report report = ReportOf(facts, {options.host, options.v3.isOn ? "SNMPv3" : "SNMPv1"});
        report.push_back(InterfaceSection(facts));
        TextStyle style = OutputStyle();
        style.hasDetails = options.isVerbose;
        Print(ReportText(report, style));
    }
    if (answers.lastStatus != Status::kAnswered) {
        Warn("the report is cut short: " + options.host + " was not asked any further");
        return ExitCodeOf(answers.lastStatus);
    }
    if (!facts.deviceIndex) Warn(options.host + " answers, but has no printer among its devices");
    return facts.deviceIndex ? kFound : kNone;
}

}  // namespace

void AddDirectedCommands(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<Options>();  // shared, since only one command runs
    const auto add = [&](const char* name, const char* help, const char* footer, auto run) {
        CLI::App* command = AddDeviceCommand(app, name, help, footer, *options);
        command->callback([options, run, &exitCode] { exitCode = run(*options); });
        return command;
    };
    const auto addV3 = [&](CLI::App& command) {
        AddV3Options(command, options->v3);
        command.get_option("--v3")->excludes(command.get_option("--community"));
    };
    for (const auto& [name, help, footer, run] :
         {std::tuple("get", "Read values of one device", kGetExamples, &RunGet),
          {"getnext", "Read the values that follow OIDs", kGetNextExamples, &RunGetNext}}) {
        CLI::App* get = add(name, help, footer, run);
        get->add_option("OID", options->oids, "Numeric, or a name")->required();
        get->add_flag("-n,--names", options->withNames, kNamesHelp);
        addV3(*get);
    }

    CLI::App* walk = add("walk", "Read a subtree of one device", kWalkExamples, RunWalk);
    walk->add_option("ROOT", options->root, "Where to start [.1.3.6.1.2.1]");
    walk->add_flag("-n,--names", options->withNames, kNamesHelp);
    addV3(*walk);

    CLI::App* set = add("set", "Write one value of one device", kSetExamples, RunSet);
    set->add_option("OID", options->oid, "What to write: numeric, or a name")->required();
    set->add_option("TYPE", options->type, "Its type, see below")->required();
    set->add_option("VALUE", options->value, "The value; null takes none");
    set->add_option("-w,--write-community", options->writeCommunity, "Write community [sesame]")
        ->type_name("NAME");
    set->add_flag("--verify", options->mustVerify, "Read the value back, with --community");

    add("info", "Show a device's information text", kInfoExamples, RunInfo);

    CLI::App* printer =
        add("printer", "Show a printer's state and supplies", kPrinterExamples, RunPrinter);
    printer->add_flag("--verbose", options->isVerbose, "Name the objects that were not read");
    addV3(*printer);
}

}  // namespace vndiscover::host
