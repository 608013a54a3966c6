#include <vndiscover.h>

#include <cstdio>
#include <stdexcept>

#include "cli/commands.h"
#include "cli/saved_scans.h"
#include "model/asking/json_request.h"
#include "platform/owned.h"
#include "platform/result_window.h"
#include "platform/saved_file.h"
#include "platform/wide_text.h"
#include "values/object_names.h"

namespace vndiscover::host {
namespace {

constexpr char kExamples[] =
    R"(The devices of a network are printed after 2 s without an answer. One that
answers twice, or on two adapters, has two rows. Ctrl-C ends the sweep and keeps
what was printed; a second Ctrl-C ends the program at once.

A --json file names the OIDs to ask each device for; the answers replace the
empty strings, and the names become OIDs. Devices are listed if they have a
value for DiscoverOID, with --v3 a text or an INTEGER:
  {"DiscoverOID": "sysName.0",
   "GET": {"sysLocation.0": "", ".1.3.6.1.2.1.1.4.0": ""}}

--save reads each device found as 'vndiscover printer' does, and saves all
answers, and the devices found in them, as JSON; 'vndiscover compare' shows what
changed between two files. An existing file must be a scan. It is replaced once
the new one is complete, unless only the old one holds devices. --append adds
the answers to those in the file. A first Ctrl-C while devices are asked or
answers are saved still saves the answers that have come.

Examples:
  vndiscover sweep
  vndiscover sweep --community public --oid sysName.0
  vndiscover sweep --community public --json request.json --format json
  vndiscover sweep --ipv6 --csv devices.csv
  vndiscover sweep --v3 -u admin -a SHA256 -x AES
  vndiscover sweep --save monday.json

Exit codes: 0 devices found, 1 none, or --save failed or left answers out,
2 wrong usage, 3 no request could be sent.)";

struct SweepOptions {
    std::string community, oid, jsonPath, csvPath;
    bool useIPv6 = false;
    Format format = Format::kText;
    V3Options v3;
    SaveOptions save;
};

struct Sweep {
    SnmpSweep arguments;
    SweepValues values;
};

std::string ReadRequest(const SweepOptions& options) {
    constexpr size_t kMaxSize = size_t{1} << 20;  // with blanks, which are not sent
    std::string problem;
    const auto text = ReadFileText(options.jsonPath, kMaxSize, problem);
    const auto request = text ? PrepareRequest(*text, problem) : std::nullopt;
    if (!request) throw CLI::ValidationError("--json", "'" + options.jsonPath + "' " + problem);
    const JsonItem document = ParseDocument(*request);
    for (const std::string& name : OidTextsOf(document.get())) {
        const auto oid = ParseOid(name);
        if (!oid) Warn("'" + options.jsonPath + "': " + NotAnOid(name));
        if (oid && !options.v3.isOn) CheckRequest("--json", options.community, *oid);
    }
    return *request;
}

// The module sweeps without a file that it cannot open, so the user is warned beforehand. Without
// SNMPv3 it writes the file itself, and copies the path.
void CheckCsvPath(const std::string& path, bool isOurs) {
    if (!isOurs && ToWide(path).size() > VN_TEXT_MAX)
        throw CLI::ValidationError(
            "--csv",
            "the path has more than 259 characters, which only a sweep with --v3 can write");
    std::string problem;
    bool isBroken = false;
    if (LoadScan(path, isBroken, problem))
        throw CLI::ValidationError("--csv", "'" + path + "' is a scan, which it would replace");
    const OwnedStream file(_wfopen(SystemPath(path).c_str(), L"ab"));
    if (!file) throw CLI::ValidationError("--csv", "cannot write '" + path + "'");
}

// No option may overwrite the file of another one.
void CheckPathsDiffer(const SweepOptions& options) {
    const std::pair<const char*, const std::string&> paths[] = {
        {"--json", options.jsonPath}, {"--csv", options.csvPath}, {"--save", options.save.path}};
    for (const auto& [option, path] : paths) {
        for (const auto& [other, otherPath] : paths) {
            if (option != other && !path.empty() && !otherPath.empty() &&
                IsSamePath(path, otherPath))
                throw CLI::ValidationError(option, std::string("is the file of ") + other);
        }
    }
}

Oid CheckedOid(const SweepOptions& options) {
    const std::string& text = options.oid;
    const auto oid = ParseOidOrName(text);
    if (!oid || !FitsRequest(*oid)) throw CLI::ValidationError("--oid", NotAnOid(text));
    if (!options.v3.isOn) CheckRequest("--oid", options.community, *oid);
    if (IsMisencoded(*oid))
        Warn(text + " has a number over 16383: devices are asked for another OID");
    return *oid;
}

Sweep Prepare(const SweepOptions& options) {
    Sweep sweep;
    auto& [arguments, values] = sweep;
    values = {ValueKind::kRaw, DefaultDiscoveryOid(), "", ToAnsi, options.v3.isOn};
    CheckPathsDiffer(options);
    arguments.useIPv6 = options.useIPv6;
    CheckRequest("--community", options.community, DefaultDiscoveryOid());
    if (!options.save.path.empty()) CheckLongestCommunity(options.community);
    arguments.community = ToWide(options.community);
    if (!options.oid.empty()) {
        values.oid = CheckedOid(options);
        arguments.oid = ToWide(OidToText(values.oid));
    }
    if (!options.jsonPath.empty()) {
        arguments.request = ToWide(ReadRequest(options));
        values.kind = ValueKind::kDocument;
    }
    if (!options.csvPath.empty()) CheckCsvPath(options.csvPath, options.v3.isOn);
    arguments.resultPath = ToWide(options.csvPath);
    if (options.v3.isOn && !arguments.oid.empty()) {
        // SNMPv3 sweeps accept an OID only in a JSON request; its only answer is then the value.
        arguments.request = ToWide(RequestFor(OidToText(values.oid)));
        values.kind = ValueKind::kAnswer;
    }
    values.request = ToUtf8(arguments.request);
    return sweep;
}

// The result file of an SNMPv3 sweep, whose exports take no path.
class CsvFile {
  public:
    explicit CsvFile(const std::string& path)
        : file_(path.empty() ? nullptr : _wfopen(SystemPath(path).c_str(), L"w")) {}
    void Write(const std::string& row) {
        if (!file_) return;
        // A row of 4 KB or more is not buffered, so flushing does not report that it failed.
        bool isWritten = std::fwrite(row.data(), 1, row.size(), file_.Get()) == row.size();
        // Keeps the line even if the process is terminated.
        if (std::fflush(file_.Get()) != 0) isWritten = false;
        if (!isWritten && problem_.empty()) problem_ = ErrorText(GetLastError());
    }
    const std::string& Problem() const { return problem_; }

  private:
    OwnedStream file_;
    std::string problem_;
};

// What was asked: a device of another maker may answer, but not to this.
std::string NothingCame(const SweepOptions& options, const SweepValues& values) {
    const bool isV3 = options.v3.isOn, isDocument = !options.jsonPath.empty();
    const std::string community = CommunityOf(options.community);
    const std::string object = isDocument ? OidTextsOf(ParseDocument(values.request).get()).front()
                               : options.oid.empty() ? VN_DEFAULT_DISCOVERY_OID
                                                     : options.oid;
    // The module does not report a device that refuses, or whose value it does not read.
    const std::string limits =
        isV3 ? "; or none lets this user read it at this security level, or has an INTEGER or a "
               "text of 1 to 126 bytes there"
        : isDocument ? "; or none has a value there that SNMPv1 can carry"
                     : "";
    const bool isOtherwise = !options.useIPv6 && community == "public" &&
                             values.oid == Append(OidOf("sysName"), {0});  // as kAskOtherwise says
    return "no device answered " +
           (isV3 ? "the SNMPv3 user '" + options.v3.user : "community '" + community) + "' for " +
           object + limits + (isOtherwise ? kAskAsOthers : kAskOtherwise);
}

// Returns false if not all is saved, with a warning that says why.
bool SaveAtEnd(ScanSaver& saver) {
    try {
        saver.Save();
        return true;
    } catch (const std::runtime_error& error) {
        Warn(error.what());
        return false;
    }
}

int RunSweep(const SweepOptions& options) {
    Sweep sweep = Prepare(options);
    ScanSaver saver(options.save);
    const auto security = ResolveSecurity(options.v3);
    sweep.arguments.security = security.get();
    saver.Begin(options.v3.isOn ? SweepKind::kSnmpV3 : SweepKind::kSnmpV1,
                sweep.arguments.request.empty() ? AnswerForm::kValue : AnswerForm::kDocument,
                options.useIPv6, sweep.values.oid);
    bool isStopped = false, wasSent = false;
    DeviceWriter writer(options.format, options.useIPv6, sweep.values);
    DeviceWriter csvWriter(Format::kCsv, options.useIPv6, sweep.values);
    CsvFile csv(options.v3.isOn ? options.csvPath : "");
    std::atomic<size_t> devices{0};
    size_t cut = 0;
    {
        SweepWatch watch(StopDiscoverSnmp, StatusOf(devices, "device", "devices"));
        const ResultWindow window([&](const char* address, const char* value) {
            ++devices;
            cut += sweep.values.kind != ValueKind::kRaw && IsCutDocument(value);
            saver.Add(address, value);
            csv.Write(csvWriter.Row(address, value));
            if (!Print(writer.Row(address, value))) watch.RequestStop();
        });
        wasSent = RunSweep(window.Handle(), ResultWindow::kMessage, sweep.arguments);
        window.Rethrow();
        isStopped = watch.IsStopped();
    }
    Print(writer.End());
    if (cut > 0)
        Warn("answers that are cut, at " + std::to_string(kValueSize - 1) +
             " bytes: " + std::to_string(cut) + "; ask for fewer OIDs");
    WarnAtEnd(isStopped, devices, wasSent ? NothingCame(options, sweep.values) : kNothingSent);
    if (!isStopped) saver.AskDevices({options.community, security});
    const int exitCode = devices > 0 ? kFound : wasSent || isStopped ? kNone : kSendFailed;
    if (!csv.Problem().empty()) Warn("'" + options.csvPath + "' is incomplete" + csv.Problem());
    return SaveAtEnd(saver) && csv.Problem().empty() ? exitCode : std::max<int>(exitCode, kNone);
}

}  // namespace

void AddSweepCommand(CLI::App& app, int& exitCode) {
    CLI::App* command =
        app.add_subcommand("sweep", "Find the devices on every network of this computer");
    auto options = std::make_shared<SweepOptions>();
    CLI::Option* community =
        command->add_option("-c,--community", options->community, "Read community [sesame]");
    community->type_name("NAME");
    CLI::Option* oid = command->add_option("-o,--oid", options->oid,
                                           "OID to ask for [the device information OID]");
    MustNotBeEmpty(oid->type_name("OID"));
    CLI::Option* json = command->add_option("-j,--json", options->jsonPath,
                                            "JSON request with further OIDs, see below");
    MustNotBeEmpty(json->type_name("FILE")->excludes(oid));
    command->add_flag("-6,--ipv6", options->useIPv6,
                      "Sweep over IPv6 (link-local) instead of IPv4");
    CLI::Option* csv = command->add_option("--csv", options->csvPath,
                                           "Also write \"address\",\"value\" lines to this file");
    MustNotBeEmpty(csv->type_name("PATH"));
    AddFormat(*command, options->format, {"table", "json", "csv"});
    AddSaveOptions(*command, options->save);
    AddV3Options(*command, options->v3);
    command->get_option("--v3")->excludes(community);
    command->footer(kExamples);
    command->callback([options, &exitCode] { exitCode = RunSweep(*options); });
}

}  // namespace vndiscover::host
