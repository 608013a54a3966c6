// What a program shows a person: sections of rows. They are made of the facts once, and each
// program draws them in its own way. A program adds only what it alone can offer, such as a key or
// a command.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/printer/printer_facts.h"

namespace vndiscover::host {

// The worst first, as lists sort by it.
enum class Severity { kCritical, kAttention, kUnknown, kFine };

// "critical", "attention", "unknown", "fine".
const char* SeverityName(Severity severity);

// Critical if an error keeps it from printing; fine without errors, or if they are not known.
Severity ErrorSeverity(const PrinterFacts& facts);

// The percentage below which a level needs attention. An empty supply is critical.
struct LevelLimits {
    int low = 10;
};
Severity SeverityOf(const Level& level, const LevelLimits& limits = {});

// All text is plain.
struct ReportRow {
    std::string label, text;
    std::optional<int> percent{};  // of a supply, or in a tray: 0 to 100
    Severity severity = Severity::kFine;
    std::string colour{};       // of a supply, see ColourWords
    std::string detail{};       // for those who ask for more: the objects of a reason
    bool repeatsLabel = false;  // even after a row with the same label
    bool isCommand = false;     // for a shell: must stay in one line
};

struct ReportSection {
    // Empty: the labels of the rows are titles, and rows with the same label are together.
    std::string title;
    std::vector<ReportRow> rows;

    // Leaves out a row without text.
    void Add(ReportRow row) {
        if (!row.text.empty()) rows.push_back(std::move(row));
    }
    void Add(std::string label, std::string text, Severity severity = Severity::kFine) {
        Add({std::move(label), std::move(text), std::nullopt, severity});
    }
};

using Report = std::vector<ReportSection>;

// For a person, the words of states and kinds: "maintenance overdue" for "overduePreventMaint".
std::string PlainWords(const std::string& word);
std::string SupplyName(const Supply& supply);
// What may name its colour: "black", or else its description.
std::string ColourWords(const Supply& supply);
// "none" if the device has said that there are none; empty if it has not said.
std::string ErrorText(const PrinterFacts& facts);
// Without its age.
std::string AlertText(const Alert& alert);

// Shows a severity without colour: "!!" for critical, "!" for attention, otherwise nothing.
const char* SeverityMark(Severity severity);

// The text of a row with its mark: "! 4 % (40 of 1000)".
std::string WholeText(const ReportRow& row);

// How to draw a supply whose colour is given in words.
struct SupplyColour {
    const char* word;    // "cyan"
    uint32_t rgb;        // 0xRRGGBB
    const char* escape;  // of a terminal: the parameters of "select graphic rendition"
};
// By the last known word: "light cyan" is cyan. Null: unknown.
const SupplyColour* FindSupplyColour(const std::string& words);

// The rows of all sections for a list of two columns. A title labels its first row if that has no
// label, otherwise a row of its own without text. Labels below a title are indented.
std::vector<ReportRow> RowsOf(const Report& report);

// What is known of a device besides its facts.
struct ReportContext {
    std::string addresses, protocols;  // "10.77.1.20, fe80::1", "SNMPv1"
    bool isRead = true;  // false: what the facts lack was not asked for; it is left out
    LevelLimits limits{};
};
enum class ReportPart : size_t { kIdentity, kState, kAlerts, kSupplies, kTrays, kNotes };
Report ReportOf(const PrinterFacts& facts, const ReportContext& context);

// The network interfaces, which are not in the report above.
ReportSection InterfaceSection(const PrinterFacts& facts);

struct TextStyle {
    size_t width = 80;        // of a line, in characters
    bool hasColours = false;  // as escape sequences, of bars and marks
    bool hasMarks = true;     // "!" and "!!" before what needs attention
    bool hasDetails = false;
};

// Titles on the left, levels as bars. Lines end in LF. Only commands and long words are too wide.
std::string ReportText(const Report& report, const TextStyle& style = {});

constexpr char kSupplyLow[] = "a supply is low", kSupplyEmpty[] = "a supply is empty";

// A printer in a few words, for a list.
struct PrinterSummary {
    Severity severity = Severity::kUnknown;
    std::string state;                          // "no paper, door open", "idle"; empty: unknown
    std::optional<int> lowestSupply;            // percent
    std::string supply;                         // "4 % Toner T410"; empty: no level is known
    std::string supplyColour;                   // see ColourWords
    Severity supplySeverity = Severity::kFine;  // of the worst one whose level is known
    std::string supplyProblem;                  // its words: "a supply is empty"; empty: it is fine
};

PrinterSummary SummaryOf(const PrinterFacts& facts, const LevelLimits& limits = {});

struct PrinterLine {
    PrinterFacts facts;
    PrinterSummary summary;
    std::vector<std::string> addresses;
    std::string problem;  // why reading ended early; empty: it did not
};
// The problem, or else the subjects of what could not be read: "description, serial number".
std::string UnreadText(const PrinterLine& printer);

// "Black toner: 62 % (62 of 100); Waste box: room left: 97 % (97 of 100)"
std::string SuppliesText(const PrinterFacts& facts);
// The first page count; empty if there is none.
std::string CountText(const PrinterFacts& facts);

}  // namespace vndiscover::host
