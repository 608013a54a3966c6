#include "model/printer/report_text.h"

#include <algorithm>

#include "values/plain_text.h"

namespace vndiscover::host {
namespace {

constexpr size_t kLeftWidth = 15;
constexpr size_t kIndent = kLeftWidth + 2;  // of the lines after the first one of a row
constexpr size_t kMaxNameWidth = 24;
constexpr int kBarWidth = 10;

size_t Characters(const std::string& text) {
    return static_cast<size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<uint8_t>(c) & 0xC0) != 0x80; }));
}

std::string Bar(const std::optional<int>& percent) {
    if (!percent) return std::string(kBarWidth + 2, ' ');
    const auto full = static_cast<size_t>((*percent * kBarWidth + 50) / 100);
    return "[" + std::string(full, '#') + std::string(kBarWidth - full, '.') + "]";
}

class Writer {
  public:
    explicit Writer(size_t width) : width_(width) {}

    void Add(const ReportSection& section) {
        const bool hasNames = !section.title.empty();
        size_t nameWidth = 0;
        bool hasBars = false;
        for (const ReportRow& row : section.rows) {
            if (hasNames) nameWidth = std::max(nameWidth, Characters(row.label) + 2);
            hasBars = hasBars || row.percent;
        }
        nameWidth = std::min(nameWidth, kMaxNameWidth + 2);
        for (const ReportRow& row : section.rows) {
            Begin(hasNames ? section.title : row.label, row.mark);
            if (hasNames && !row.label.empty()) AddName(row.label, nameWidth);
            if (hasBars) line_ += Bar(row.percent) + "  ";
            if (row.isCommand) {
                line_ += "  " + row.text;
            } else {
                AddText(WholeText(row), hasBars);
            }
            EndLine();
        }
    }
    const std::string& Text() const { return text_; }

  private:
    // A label is written once for rows that follow each other, but for each device that is new.
    void Begin(const std::string& label, Mark mark) {
        const bool isNew = label != lastLabel_ || mark != Mark::kNone;
        line_ = Padded(isNew ? label : "", kLeftWidth);
        lastLabel_ = label;
    }

    // A long name stands in a line of its own.
    void AddName(const std::string& name, size_t nameWidth) {
        if (Characters(name) + 2 <= nameWidth) {
            line_ += Padded(name, nameWidth);
            return;
        }
        AddText(name);
        EndLine();
        line_ = std::string(kLeftWidth + nameWidth, ' ');
    }

    // Breaks lines at spaces.
    void AddText(const std::string& text, bool isInPhrases = false) {
        bool isFirst = true;
        for (size_t at = 0; at <= text.size();) {
            const size_t end = isInPhrases ? PhraseEnd(text, at) : WordEnd(text, at);
            const std::string part = text.substr(at, end - at);
            if (Characters(line_) + Characters(part) + (isFirst ? 0 : 1) > width_ &&
                Characters(line_) > kIndent) {
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
        return end - at + kIndent > width_ ? WordEnd(text, at) : end;
    }

    void EndLine() {
        line_.erase(line_.find_last_not_of(' ') + 1);
        text_ += line_ + "\n";
    }

    size_t width_;
    std::string text_, line_, lastLabel_;
};

}  // namespace

std::string ReportText(const Report& report, size_t width) {
    Writer writer(width);
    for (const ReportSection& section : report) writer.Add(section);
    return writer.Text();
}

}  // namespace vndiscover::host
