// What a program tells a person: sections of rows, made once from the facts and drawn by each
// program in its own way. Labels and texts are here only.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/printer/printer_facts.h"

namespace vndiscover::host {

enum class Severity { kFine, kAttention, kCritical, kUnknown };

// Critical if one keeps it from printing; fine if there are none, or the device has not said.
Severity ErrorSeverity(const PrinterFacts& facts);
Severity SeverityOf(const Level& level);

// What a comparison says of a device.
enum class Mark { kNone, kNew, kGone, kChanged };

// All text is plain.
struct ReportRow {
    std::string label, text;
    std::optional<int> percent;  // of a supply, or in a tray: 0 to 100
    Severity severity = Severity::kFine;
    std::string colour;  // of a supply, in the device's words: "black"; empty: none
    std::string detail;  // for those who look closer: the objects of a reason
    Mark mark = Mark::kNone;
    bool isCommand = false;  // for a shell: must stay in one line

    bool operator==(const ReportRow& other) const;
};

struct ReportSection {
    // Empty: the rows' labels are as important as a title, and rows with the same label are
    // together.
    std::string title;
    std::vector<ReportRow> rows;

    // Leaves out a row without text.
    void Add(std::string label, std::string text, Severity severity = Severity::kFine);
};

using Report = std::vector<ReportSection>;

// For a person, the words of states and kinds: "maintenance overdue" for "overduePreventMaint".
std::string PlainWords(const std::string& word);
std::string SupplyName(const Supply& supply);
// "none" if the device has said that there are none; empty if it has not said.
std::string ErrorText(const PrinterFacts& facts);
// Without its age.
std::string AlertText(const Alert& alert);

// The text of a row with its detail.
std::string WholeText(const ReportRow& row);

// The rows of all sections for a list of two columns. A title is the label of its first row, or if
// that has one, of a row without text. Labels below a title are indented.
std::vector<ReportRow> RowsOf(const Report& report);

// What is known of a device besides its facts.
struct ReportContext {
    std::string addresses, protocols;  // "10.77.1.20, fe80::1", "SNMPv1"
    bool isRead = true;  // otherwise what the facts lack was not asked for, and is left out
};
// The places of its sections.
enum class ReportPart : size_t { kIdentity, kState, kAlerts, kSupplies, kTrays, kNotes };
Report ReportOf(const PrinterFacts& facts, const ReportContext& context);

}  // namespace vndiscover::host
