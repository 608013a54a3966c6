// The text form of a report: labels on the left, contents on the right.
#pragma once

#include <string>

#include "values/plain_text.h"

namespace vndiscover::host {

// A label is written before its first line only; empty lines are left out.
class Lines {
  public:
    void Add(const char* label, const std::string& line) {
        constexpr size_t kLabelWidth = 15;
        if (line.empty()) return;
        text_ += Padded(label == lastLabel_ ? "" : label, kLabelWidth) + line + "\n";
        lastLabel_ = label;
    }
    const std::string& Text() const { return text_; }

  private:
    std::string text_, lastLabel_;
};

}  // namespace vndiscover::host
