// The output of directed requests: one line or JSON element for each variable, as it arrives.
#pragma once

#include <string>

#include "model/asking/answer.h"
#include "values/json_output.h"

namespace vndiscover::host {

class VariableWriter {
  public:
    // withNames: whether to show OIDs, enumerations and bits as words, and hardware addresses.
    explicit VariableWriter(bool isJson, bool withNames = false)
        : isJson_(isJson), withNames_(withNames) {}
    // The text to print now; lines end in LF. As text, only kAnswered gives a line.
    std::string Row(const Answer& answer);
    // Must be called once, at the end.
    std::string End() { return isJson_ ? array_.Finish() : ""; }

  private:
    bool isJson_;
    bool withNames_;
    JsonArray array_;
};

}  // namespace vndiscover::host
