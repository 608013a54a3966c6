#include "model/printer/report.h"

#include <algorithm>

#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr size_t kLeftWidth = 15;
constexpr size_t kIndent = kLeftWidth + 2;  // of the lines after the first one of a row
constexpr size_t kMaxNameWidth = 24;
constexpr int kBarWidth = 10;

class Writer {
  public:
    explicit Writer(const TextStyle& style) : style_(style) {}

    void Add(const ReportSection& section) {
        const bool hasNames = !section.title.empty();
        const bool hasBars =
            AnyOf(section.rows, [](const auto& row) { return row.percent.has_value(); });
        size_t nameWidth = 0;
        for (const ReportRow& row : section.rows)
            nameWidth = std::max(nameWidth, CharacterCount(row.label) + 2);
        nameWidth = std::min(nameWidth, kMaxNameWidth + 2);
        for (const ReportRow& row : section.rows) {
            Begin(hasNames ? section.title : row.label, row.repeatsLabel);
            if (hasNames && !row.label.empty()) AddName(row.label, nameWidth);
            if (hasBars) AddBar(row);
            if (row.isCommand) {
                line_ += "  " + row.text;
            } else {
                AddMarkedText(row, hasBars);
            }
            EndLine();
        }
    }
    const std::string& Text() const { return text_; }

  private:
    void Begin(const std::string& label, bool repeatsLabel) {
        line_ = Padded(label != lastLabel_ || repeatsLabel ? label : "", kLeftWidth);
        lastLabel_ = label;
    }

    // A long name stands in a line of its own.
    void AddName(const std::string& name, size_t nameWidth) {
        if (CharacterCount(name) + 2 <= nameWidth) {
            line_ += Padded(name, nameWidth);
            return;
        }
        AddText(name);
        EndLine();
        line_ = std::string(kLeftWidth + nameWidth, ' ');
    }

    void AddBar(const ReportRow& row) {
        if (!row.percent) {
            line_.append(kBarWidth + 4, ' ');
            return;
        }
        const auto full = static_cast<size_t>((*row.percent * kBarWidth + 50) / 100);
        const SupplyColour* colour = FindSupplyColour(row.colour);
        line_ += '[';
        AddColoured(std::string(full, '#'), colour ? colour->escape : "");
        line_ += std::string(kBarWidth - full, '.') + "]  ";
    }

    void AddMarkedText(const ReportRow& row, bool isInPhrases) {
        const bool hasDetail = style_.hasDetails && !row.detail.empty();
        const std::string mark = style_.hasMarks ? SeverityMark(row.severity) : "";
        AddColoured(mark, row.severity == Severity::kCritical ? "1;31" : "1;33");
        AddText((mark.empty() ? "" : " ") + row.text + (hasDetail ? " (" + row.detail + ")" : ""),
                isInPhrases);
    }

    void AddColoured(const std::string& text, const std::string& escape) {
        const bool isColoured = style_.hasColours && !text.empty() && !escape.empty();
        const std::string start = isColoured ? "\x1b[" + escape + "m" : "";
        const std::string end = isColoured ? "\x1b[0m" : "";
        line_ += start + text + end;
        invisible_ += start.size() + end.size();
    }

    void AddText(const std::string& text, bool isInPhrases = false) {
        bool isFirst = true;
        for (size_t at = 0; at <= text.size();) {
            const size_t end = isInPhrases ? PhraseEnd(text, at) : WordEnd(text, at);
            const std::string part = text.substr(at, end - at);
            const size_t done = CharacterCount(line_) - invisible_;
            if (done + CharacterCount(part) + (isFirst ? 0 : 1) > style_.width && done > kIndent) {
                EndLine();
                line_ = std::string(kIndent, ' ');
                isFirst = true;
            }
            line_ += (isFirst ? "" : " ") + part;
            isFirst = false;
            at = end + 1;
        }
    }

    static size_t WordEnd(const std::string& text, size_t at) {
        return std::min(text.find(' ', at), text.size());
    }

    // The end of a word if a phrase would not fit into a line.
    size_t PhraseEnd(const std::string& text, size_t at) const {
        const size_t comma = text.find(", ", at), bracket = text.find(" (", at);
        const size_t end =
            std::min({comma == std::string::npos ? comma : comma + 1, bracket, text.size()});
        return end - at + kIndent > style_.width ? WordEnd(text, at) : end;
    }

    void EndLine() {
        line_.erase(line_.find_last_not_of(' ') + 1);
        text_ += line_ + "\n";
        invisible_ = 0;
    }

    const TextStyle& style_;
    std::string text_, line_, lastLabel_;
    size_t invisible_ = 0;  // characters of the line
};

}  // namespace

std::string ReportText(const Report& report, const TextStyle& style) {
    Writer writer(style);
    for (const ReportSection& section : report) writer.Add(section);
    return writer.Text();
}

}  // namespace vndiscover::host
