// What the directed requests print: one line or one JSON element for each variable, as it arrives.
#ifndef VNDISCOVER_HOST_CLI_VARIABLE_WRITER_H
#define VNDISCOVER_HOST_CLI_VARIABLE_WRITER_H

#include <string>

#include "model/answer.h"
#include "values/json_output.h"

namespace vndiscover::host {

class VariableWriter {
  public:
    // withNames: names for OIDs, and words for enumerations, bits and hardware addresses.
    explicit VariableWriter(bool isJson, bool withNames = false)
        : isJson_(isJson), withNames_(withNames) {}
    // The text to print now; lines end in LF. In text form empty for anything but kAnswered: a
    // problem is told on standard error.
    std::string Row(const Answer& answer);
    // Call it once, at the end.
    std::string End() { return isJson_ ? array_.Finish() : ""; }

  private:
    std::string JsonRow(const Answer& answer);

    std::string TextLine(const Answer& answer) const;

    bool isJson_;
    bool withNames_;
    JsonArray array_;
};

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_CLI_VARIABLE_WRITER_H
