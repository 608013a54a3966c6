#include <cjson/cJSON.h>

#include "cli/commands.h"
#include "cli/variable_writer.h"
#include "model/asking/answer.h"
#include "model/asking/walk.h"
#include "model/scan/scan.h"
#include "platform/console.h"
#include "values/object_names.h"
#include "values/oid_text.h"
#include "values/text.h"
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

Exit codes: 0 answered, 1 no answer, 2 wrong usage.)";

struct Options : DeviceOptions {
    std::string root = ".1.3.6.1.2.1", oid, type, value, writeCommunity;
    std::vector<std::string> oids;
    bool mustVerify = false;
    bool withNames = false;
};

Oid ParsedOid(const char* argument, const std::string& text) {
    const auto oid = ParseOidOrName(text);
    if (!oid) throw CLI::ValidationError(argument, NotAnOid(text));
    return *oid;
}

void CheckOid(const Options& options, const char* argument, const Oid& oid) {
    if (!FitsRequest(oid))
        throw CLI::ValidationError(argument, OidToText(oid) + " is too short or too long");
    if (!options.v3.isOn) {
        CheckRequest("--community", options.community, kSystem);
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
    const Asker asker = AskerOf(device);
    PatientAsker patient(asker);
    for (const Oid& oid : oids) {
        const Answer answer = patient.Ask(oid, [&] { return (device.*ask)(oid); });
        Show(writer, answer);
        // A failed send outranks a missing answer.
        exitCode = std::max(exitCode, ExitCodeOf(answer.status));
    }
    Print(writer.End());
    return exitCode;
}

int Verify(const Device& device, const Oid& oid, const SetValue& value) {
    const Answer answer = device.Get(oid);
    const bool isAnswered = answer.status == Status::kAnswered;
    if (isAnswered && answer.type == value.type && answer.bytes == value.bytes) return kFound;
    if (isAnswered) {
        const std::string shown = FormatValue(answer.type, answer.bytes);
        Warn("not set: " + OidToText(oid) + " has " +
             (IsNoValue(answer.type) ? shown : "the " + TypeName(answer.type) + " " + shown));
    } else {
        Warn("not verified: " + Problem(answer) + " to reading " + OidToText(oid));
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
    if (end.skipped > 0) {
        Warn(std::to_string(end.skipped) +
             (end.skipped == 1 ? " variable was" : " variables were") + " skipped");
    }
    if (end.variables + end.skipped == 0) Warn("the device has no variables there");
    return end.variables > 0 ? kFound : kNone;
}

int RunWalk(const Options& options) {
    const Oid root = ParsedOid("ROOT", options.root);
    CheckOid(options, "ROOT", WalkStart(root));
    const Device device = OpenDevice(options);
    VariableWriter writer(options.format == Format::kJson, options.withNames);
    const Asker asker = AskerOf(device);
    const WalkEnd end = WalkSubtree(
        asker, root,
        // False: the reader of a pipe has gone.
        [&](const Answer& answer) { return Print(writer.Row(answer)); },
        [&](const Answer& failure) { Show(writer, failure, "skipped what follows "); });
    const bool isAnswered = end.last.status == Status::kAnswered;
    if (!isAnswered) Show(writer, end.last);
    Print(writer.End());
    return isAnswered ? FinishWalk(end) : ExitCodeOf(end.last.status);
}

int RunInfo(const Options& options) {
    const Device device = OpenDevice(options);
    const auto information = device.Information();
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
    const Status status = device.Get(DefaultDiscoveryOid()).status;
    const bool isThere = status != Status::kNoAnswer && status != Status::kSendFailed;
    Warn(isThere ? options.host + " answered, without this object"
                 : "no answer from " + options.host);
    return kNone;
}

void AddNames(CLI::App& command, Options& options) {
    command.add_flag("-n,--names", options.withNames, "Show names, and words for numbers and bits");
}

}  // namespace

void AddDirectedCommands(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<Options>();  // shared, since only one command runs
    for (const auto& [name, help, footer, ask] :
         {std::tuple("get", "Read values of one device", kGetExamples, &Device::Get),
          {"getnext", "Read the values that follow OIDs", kGetNextExamples, &Device::GetNext}}) {
        CLI::App* get = AddDeviceCommand(app, name, help, footer, *options);
        get->add_option("OID", options->oids, "Numeric, or a name")->required();
        AddNames(*get, *options);
        AddDeviceV3(*get, *options);
        get->callback([options, ask = ask, &exitCode] { exitCode = RunEach(*options, ask); });
    }

    CLI::App* walk =
        AddDeviceCommand(app, "walk", "Read a subtree of one device", kWalkExamples, *options);
    walk->add_option("ROOT", options->root, "Where to start [.1.3.6.1.2.1]");
    AddNames(*walk, *options);
    AddDeviceV3(*walk, *options);
    walk->callback([options, &exitCode] { exitCode = RunWalk(*options); });

    CLI::App* set =
        AddDeviceCommand(app, "set", "Write one value of one device", kSetExamples, *options);
    set->add_option("OID", options->oid, "What to write: numeric, or a name")->required();
    set->add_option("TYPE", options->type, "Its type, see below")->required();
    set->add_option("VALUE", options->value, "The value; null takes none");
    set->add_option("-w,--write-community", options->writeCommunity, "Write community [sesame]")
        ->type_name("NAME");
    set->add_flag("--verify", options->mustVerify, "Read the value back, with --community");
    set->callback([options, &exitCode] { exitCode = RunSet(*options); });

    CLI::App* info =
        AddDeviceCommand(app, "info", "Show a device's information text", kInfoExamples, *options);
    info->callback([options, &exitCode] { exitCode = RunInfo(*options); });
}

}  // namespace vndiscover::host
