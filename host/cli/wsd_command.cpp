#include <windows.h>

#include <atomic>
#include <cstring>

#include "cli/commands.h"
#include "cli/scan_keeper.h"
#include "device/sweeps.h"
#include "platform/console.h"
#include "platform/result_window.h"
#include "values/plain_text.h"
#include "wsd/wsd_message.h"

namespace vndiscover::host {
namespace {

constexpr char kExamples[] =
    R"(Sends a Probe from every IPv4 address in turn, and from the loopback address.
Each waits until no reply has come for --timeout, for 30 seconds at most. The
list is printed at the end: a device that replied several times is listed once,
with a count. Ctrl-C ends the sweep and prints what was found. Types have one of
these prefixes: wsdp (devices), wprt (printers), wscn (scanners), pub
(computers). --save saves the replies, and the devices found in them, as JSON;
--append adds them to the answers of other sweeps in the file, and merges
devices by their endpoints and addresses.

Examples:
  vndiscover wsd
  vndiscover wsd --types wprt:PrintDeviceType --format json
  vndiscover wsd --types "" --raw
  vndiscover wsd --save monday.json --append

Exit codes: 0 devices found, 1 none, or --save failed or left answers out,
2 wrong usage.)";

enum class WsdFormat { kTable, kJson };

struct WsdOptions {
    std::string types = "wsdp:Device";
    unsigned timeoutMs = kWsdSilenceMs;
    bool isRaw = false;
    WsdFormat format = WsdFormat::kTable;
    SaveOptions save;
};

// A reply that fills the buffer has no terminating zero.
std::string_view ReplyText(const char* reply) {
    return {reply, strnlen(reply, VN_SOAP_REPLY_SIZE)};
}

// The reply as received, without control characters, which XML does not allow anyway.
void PrintRaw(const char* address, std::string_view reply) {
    Print("== " + PlainText(address) + ", " + std::to_string(reply.size()) + " bytes\n" +
          PlainText(reply, Breaks::kKeep) + "\n");
}

int RunWsd(const WsdOptions& options) {
    std::string problem;
    const auto types = CheckTypes(options.types, problem);
    if (!types) throw CLI::ValidationError("--types", problem);
    const std::string probe = BuildProbe(*types, NewUuid());
    if (probe.size() > VN_SOAP_PROBE_MAX) throw CLI::ValidationError("--types", "too many types");

    ScanKeeper keeper(options.save);
    keeper.Begin(SweepKind::kWsd, AnswerForm::kReply, false);
    MatchList list;
    std::atomic<size_t> replies{0};
    const ULONGLONG startMs = GetTickCount64();
    {
        SweepWatch watch(StopDiscoverSoap, [&] {
            return std::to_string((GetTickCount64() - startMs) / 1000) + " s, " +
                   std::to_string(replies) + (replies == 1 ? " reply" : " replies");
        });
        const ResultWindow window([&](const char* address, const char* value) {
            ++replies;
            list.Add(address, ReplyText(value));
            keeper.Add(address, ReplyText(value));
            if (options.isRaw) PrintRaw(address, ReplyText(value));
        });
        DiscoverSoap(window.Handle(), ResultWindow::kMessage, options.timeoutMs, probe.data(),
                     static_cast<int32_t>(probe.size()));
        window.Rethrow();
        if (watch.IsStopped()) Warn("stopped");
    }
    if (!options.isRaw) Print(options.format == WsdFormat::kJson ? list.Json() : list.Table());
    keeper.Save();
    if (replies == 0) Warn(std::string("no device replied") + kDoctorHint);
    return replies > 0 ? kFound : kNone;
}

}  // namespace

void AddWsdCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("wsd", "Find devices by WS-Discovery");
    auto options = std::make_shared<WsdOptions>();
    command
        ->add_option("-t,--types", options->types, "What to look for, \"\" for all [wsdp:Device]")
        ->type_name("TYPES");
    command
        ->add_option("--timeout", options->timeoutMs, "Time without a reply; 2999 waits 2 s [3000]")
        ->type_name("MS")
        ->check(CLI::Range(1000u, 30000u).description(""));
    CLI::Option* raw = command->add_flag("--raw", options->isRaw, "Print the replies as received");
    AddFormat<WsdFormat>(*command, options->format,
                         {{"table", WsdFormat::kTable}, {"json", WsdFormat::kJson}})
        ->excludes(raw);
    AddSaveOptions(*command, options->save);
    command->footer(kExamples);
    command->callback([options, &exitCode] { exitCode = RunWsd(*options); });
}

}  // namespace vndiscover::host
