#include <algorithm>
#include <ctime>
#include <string>

#include "cli/device_options.h"
#include "cli/printer_writer.h"
#include "platform/console.h"

namespace vndiscover::host {
namespace {

constexpr char kExamples[] =
    R"(Reads the standard variables of a printer and explains them: model, serial
number, state, alerts, page counts, supplies, trays. What the device does not
provide is left out; what could not be read is listed with the reason. A device
that stops answering is not asked any further; no request is sent after the
first two minutes.

Examples:
  vndiscover printer 192.168.1.20
  vndiscover printer 192.168.1.20 --community public --format json
  vndiscover printer 192.168.1.20 --v3 -u admin -a SHA256 -x AES

Exit codes: 0 a printer, read completely, 1 no answer, no printer or cut short,
2 wrong usage, 3 a request could not be sent.)";

// The device's start in local time, to the minute.
std::string UpSince(const PrinterFacts& facts) {
    if (!facts.upTicks) return "";
    const std::time_t start = std::time(nullptr) - static_cast<std::time_t>(*facts.upTicks / 100);
    const std::tm* local = std::localtime(&start);
    char text[32];
    return local && std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", local) != 0 ? text : "";
}

int RunPrinter(const DeviceOptions& options) {
    const Device device = OpenDevice(options);
    const PrinterAnswers answers = ReadPrinter(AskerOf(device));
    if (answers.values.empty()) {
        Warn(options.host + ": " +
             (answers.gaps.empty() ? "no values" : answers.gaps.front().reason));
        if (options.format == TextFormat::kJson) Print(PrinterJson(FactsOf(answers), options.host));
        return std::max<int>(kNone, ExitCodeOf(answers.lastStatus));
    }
    const PrinterFacts facts = FactsOf(answers);
    Print(options.format == TextFormat::kJson ? PrinterJson(facts, options.host)
                                              : PrinterText(facts, UpSince(facts)));
    if (answers.lastStatus != Status::kAnswered) {
        Warn("the report is cut short: " + options.host + " was not asked any further");
        return ExitCodeOf(answers.lastStatus);
    }
    if (!facts.deviceIndex) Warn(options.host + " answers, but has no printer among its devices");
    return facts.deviceIndex ? kFound : kNone;
}

}  // namespace

void AddPrinterCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<DeviceOptions>();
    CLI::App* command = AddDeviceCommand(app, "printer", "Show a printer's state and supplies",
                                         kExamples, *options);
    AddDeviceV3(*command, *options);
    command->callback([options, &exitCode] { exitCode = RunPrinter(*options); });
}

}  // namespace vndiscover::host
