#include "cli/printers_writer.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <tuple>

#include "values/ip_address.h"
#include "values/plain_text.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr size_t kColumns = 5;
using Cells = std::array<std::string, kColumns>;

Cells CellsOf(const PrinterLine& printer) {
    const PrinterSummary& summary = printer.summary;
    const bool isFine = summary.severity == Severity::kFine;
    const std::string state = summary.state.empty() ? printer.problem : summary.state;
    return {(isFine ? "" : SeverityName(summary.severity) + std::string(": ")) + state,
            summary.supply, printer.facts.name, printer.facts.model, Joined(printer.addresses)};
}

std::string Cut(const std::string& text, size_t width) {
    if (CharacterCount(text) <= width) return text;
    std::string cut;
    size_t left = width - 2;
    for (std::string_view rest = text; left > 0; --left) {
        const size_t size = FirstCharacter(rest).bytes;
        cut += rest.substr(0, size);
        rest.remove_prefix(size);
    }
    return cut + "..";
}

}  // namespace

void SortWorstFirst(std::vector<PrinterLine>& printers) {
    const auto order = [](const PrinterLine& printer) {
        const std::string address = printer.addresses.empty() ? "" : printer.addresses.front();
        return std::make_tuple(SeverityOrder(printer.summary.severity),
                               printer.summary.lowestSupply.value_or(101), AddressOrder(address));
    };
    std::stable_sort(printers.begin(), printers.end(),
                     [&](const auto& one, const auto& other) { return order(one) < order(other); });
}

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

std::string PrintersCsv(const std::vector<PrinterLine>& printers) {
    std::string text =
        "severity,state,lowest supply,name,model,addresses,serial number,location,firmware,"
        "page count,supplies,not read\n";
    for (const PrinterLine& printer : printers) {
        const PrinterFacts& facts = printer.facts;
        std::string supplies;
        for (const Supply& supply : facts.supplies)
            supplies =
                Joined({supplies, SupplyName(supply) + ": " + LevelText(supply.level)}, "; ");
        const std::string count =
            facts.pageCounts.empty() ? "" : std::to_string(facts.pageCounts.front().count);
        std::string line;
        for (const std::string& cell :
             {std::string(SeverityName(printer.summary.severity)), printer.summary.state,
              printer.summary.supply, facts.name, facts.model, Joined(printer.addresses),
              facts.serialNumber, facts.location, facts.description, count, supplies,
              printer.problem})
            line += (line.empty() ? "" : ",") + CsvCell(cell);
        text += line + "\n";
    }
    return text;
}

}  // namespace vndiscover::host
