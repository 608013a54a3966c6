#include <vndiscover.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "cli/commands.h"
#include "model/printer/report.h"
#include "model/scan/device_writer.h"
#include "platform/console.h"
#include "values/utc_time.h"

namespace vndiscover::host {
namespace {

constexpr char kExamples[] =
    R"(Reads the standard variables of a printer and explains them: model, serial
number, state, alerts, page counts, supplies, trays, network interfaces. "!!"
marks what is critical, "!" what needs attention. What the device does not
provide is left out; what could not be read is listed with the reason. A device
that stops answering is not asked any further; no request is sent after the
first two minutes.

Examples:
  vndiscover printer 192.168.1.20
  vndiscover printer 192.168.1.20 --community public --format json
  vndiscover printer 192.168.1.20 --v3 -u admin -a SHA256 -x AES

Exit codes: 0 a printer, read completely, 1 no answer, no printer or cut short,
2 wrong usage, 3 a request could not be sent.)";

struct PrinterOptions : DeviceOptions {
    bool isVerbose = false;
};

int RunPrinter(const PrinterOptions& options) {
    const Device device = OpenDevice(options);
    PrinterAnswers answers;
    {
        std::atomic<size_t> requests{0};
        const SweepWatch watch(StopDiscoverSnmp, [&] {
            return "reading " + options.host + ": " + std::to_string(requests) + " requests";
        });
        Asker asker = AskerOf(device);
        asker.mayGoOn = [&] {  // called before each request
            ++requests;
            return !watch.IsStopped();
        };
        answers = ReadInterfaces(asker, ReadPrinter(asker));
    }
    if (answers.values.empty()) {
        Warn(options.host + ": " +
             (answers.gaps.empty() ? "no values" : answers.gaps.front().reason));
        if (options.format == Format::kJson) Print(PrinterJson(FactsOf(answers), options.host));
        return std::max<int>(kNone, ExitCodeOf(answers.lastStatus));
    }
    PrinterFacts facts = FactsOf(answers);
    facts.readTime = facts.upTicksTime = UtcNow();
    const ReportContext context = {options.host, options.v3.isOn ? "SNMPv3" : "SNMPv1"};
    Report report = ReportOf(facts, context);
    report.push_back(InterfaceSection(facts));
    TextStyle style = OutputStyle();
    style.hasDetails = options.isVerbose;
    Print(options.format == Format::kJson ? PrinterJson(facts, options.host)
                                          : ReportText(report, style));
    if (answers.lastStatus != Status::kAnswered) {
        Warn("the report is cut short: " + options.host + " was not asked any further");
        return ExitCodeOf(answers.lastStatus);
    }
    if (!facts.deviceIndex) Warn(options.host + " answers, but has no printer among its devices");
    return facts.deviceIndex ? kFound : kNone;
}

}  // namespace

void AddPrinterCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<PrinterOptions>();
    CLI::App* command = AddDeviceCommand(app, "printer", "Show a printer's state and supplies",
                                         kExamples, *options);
    command->add_flag("--verbose", options->isVerbose, "Name the objects that were not read");
    AddDeviceV3(*command, *options);
    command->callback([options, &exitCode] { exitCode = RunPrinter(*options); });
}

}  // namespace vndiscover::host
