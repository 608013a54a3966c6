#include <windows.h>

#include <cstring>

#include "cli/commands.h"
#include "cli/saved_scans.h"
#include "platform/result_window.h"
#include "platform/this_computer.h"
#include "values/ranges.h"
#include "values/text.h"
#include "wsd/wsd_message.h"

namespace vndiscover::host {
namespace {

constexpr char kExamples[] =
    R"(Sends a Probe from every IPv4 address in turn, and from the loopback address.
Each waits until no reply has come for --timeout, for 30 seconds at most. The
list is printed at the end: a device that replied several times is listed once,
with a count. Replies to the Probe of another program are left out. Ctrl-C ends
the sweep and prints what was found. Types have one of these prefixes: wsdp
(devices), wprt (printers), wscn (scanners), pub (computers). --save saves the
replies, and the devices found in them, as JSON; --append adds them to the
answers of other sweeps in the file, and merges devices by their endpoints and
addresses. An existing file must be a scan.

Examples:
  vndiscover wsd
  vndiscover wsd --all --format json
  vndiscover wsd --types "" --raw
  vndiscover wsd --save monday.json --append

Exit codes: 0 devices found, 1 none, or --save failed or left answers out,
2 wrong usage, 3 no request could be sent.)";

struct WsdOptions {
    std::string types;
    bool withAll = false;
    unsigned timeoutMs = kWsdSilenceMs;
    bool isRaw = false;
    Format format = Format::kText;
    SaveOptions save;
};

// The reply as received, without control characters, which XML does not allow anyway.
void PrintRaw(const char* address, std::string_view reply) {
    Print("== " + PlainText(address) + ", " + std::to_string(reply.size()) + " bytes\n" +
          PlainText(reply, Breaks::kKeep) + "\n");
}

bool AreOfPrinter(const std::vector<ProbeMatch>& matches) {
    return AnyOf(matches, [](const auto& match) { return Contains(match.types, kPrinterType); });
}

std::string MakeProbe(const WsdOptions& options, bool onlyPrinters, const std::string& id) {
    std::string problem;
    const auto types = CheckTypes(onlyPrinters      ? kPrinterType
                                  : options.withAll ? "wsdp:Device"
                                                    : options.types,
                                  problem);
    if (!types) throw CLI::ValidationError("--types", problem);
    std::string probe = BuildProbe(*types, id);
    if (probe.size() > VN_SOAP_PROBE_MAX) throw CLI::ValidationError("--types", "too many types");
    return probe;
}

// `onlyPrinters` leaves out other devices, some of which answer whatever types are asked for.
int RunWsd(const WsdOptions& options, bool onlyPrinters) {
    const std::string id = NewUuid();
    const std::string probe = MakeProbe(options, onlyPrinters, id);
    ScanSaver saver(options.save);
    saver.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
    MatchList list;
    std::atomic<size_t> replies{0};
    size_t others = 0;
    const ResultWindow window([&](const char* address, const char* value) {
        // A reply that fills the buffer has no terminating zero.
        const std::string_view reply(value, strnlen(value, VN_SOAP_REPLY_SIZE));
        ProbeReply read = ReadReply(reply);
        if (!read.relatesTo.empty() && Lower(read.relatesTo).find(id) == std::string::npos) return;
        if (onlyPrinters && !AreOfPrinter(read.matches)) {
            ++others;
            return;
        }
        ++replies;
        list.Add(address, std::move(read.matches));
        saver.Add(address, reply);
        if (options.isRaw) PrintRaw(address, reply);
    });
    bool isStopped = false, wasSent = false;
    {
        const SweepWatch watch(StopDiscoverSoap, StatusOf(replies, "reply", "replies"));
        wasSent = RunProbe(window.Handle(), ResultWindow::kMessage, options.timeoutMs, probe);
        isStopped = watch.IsStopped();
    }
    window.Rethrow();
    if (!options.isRaw) Print(options.format == Format::kJson ? list.Json() : list.Table());
    if (others > 0)
        Warn("replies of other devices: " + std::to_string(others) + "; --all lists them");
    WarnAtEnd(isStopped, replies,
              !wasSent       ? kNothingSent
              : onlyPrinters ? "no printer replied"
                             : "no device replied");
    saver.Save();
    if (replies > 0) return kFound;
    return wasSent || isStopped ? kNone : kSendFailed;
}

}  // namespace

void AddWsdCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("wsd", "Find devices by WS-Discovery");
    auto options = std::make_shared<WsdOptions>();
    CLI::Option* all =
        command->add_flag("--all", options->withAll, "All devices, not only printers");
    CLI::Option* types = command->add_option("-t,--types", options->types,
                                             "What to look for [wprt:PrintDeviceType]");
    types->type_name("TYPES")->excludes(all);
    command
        ->add_option("--timeout", options->timeoutMs, "Time without a reply; 2999 waits 2 s [3000]")
        ->type_name("MS")
        ->check(CLI::Range(1000u, 30000u).description(""));
    CLI::Option* raw = command->add_flag("--raw", options->isRaw, "Print the replies as received");
    AddFormat(*command, options->format, {"table", "json"})->excludes(raw);
    AddSaveOptions(*command, options->save);
    command->footer(kExamples);
    command->callback([options, types, &exitCode] {
        exitCode = RunWsd(*options, !options->withAll && types->empty());
    });
}

}  // namespace vndiscover::host
