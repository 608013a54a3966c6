#include "cli/variable_writer.h"

#include <cjson/cJSON.h>

#include "values/object_names.h"
#include "values/text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

// Bits and addresses are not text, even if all of their bytes are letters.
bool IsBinary(const Answer& answer) {
    return answer.type == kOctetString && host::IsBinary(answer.oid);
}

// Numbers as numbers, text as text, anything else as hex digits with a member that says so.
void AddValue(cJSON* element, const Answer& answer) {
    if (IsNoValue(answer.type)) {
        cJSON_AddNullToObject(element, "value");
    } else if (const auto number = NumberText(answer.type, answer.bytes)) {
        AddNumber(element, "value", *number);
    } else if (answer.type == kOctetString && IsPrintable(answer.bytes) && !IsBinary(answer)) {
        AddText(element, "value", answer.bytes);
    } else if (answer.type == kOctetString || answer.type == kOpaque) {
        AddOctets(element, answer.bytes);
    } else {
        const std::string text = FormatValue(answer.type, answer.bytes);
        AddText(element, "value", text);
        if (!text.empty() && text == HexText(answer.bytes, " "))
            AddText(element, "encoding", "hex");
    }
    if (answer.wholeSize > answer.bytes.size()) AddNumber(element, "wholeSize", answer.wholeSize);
}

std::string ValueText(const Answer& answer, bool withNames) {
    if (answer.type == kNull) return "no value";
    if (IsNoValue(answer.type)) return "no value (" + TypeName(answer.type) + ")";
    std::string line = TypeName(answer.type) + ": ";
    line += answer.bytes.empty() ? "\"\""
            : withNames          ? FormatNamedValue(answer.oid, answer.type, answer.bytes)
                                 : FormatValue(answer.type, answer.bytes);
    return line + CutNote(answer);
}

JsonItem ElementOf(const Answer& answer, bool withNames) {
    JsonItem element(cJSON_CreateObject());
    AddText(element.get(), "oid", OidToText(answer.oid));
    if (withNames) AddText(element.get(), "name", NameText(answer.oid));
    if (answer.status == Status::kAnswered) {
        AddText(element.get(), "type", TypeName(answer.type));
        AddValue(element.get(), answer);
        const std::string words = FormatNamedValue(answer.oid, answer.type, answer.bytes);
        if ((withNames || IsBinary(answer)) && words != FormatValue(answer.type, answer.bytes))
            AddText(element.get(), "text", words);
    } else {
        AddText(element.get(), "error", Problem(answer));
    }
    return element;
}

}  // namespace

std::string VariableWriter::Row(const Answer& answer) {
    if (isJson_) {
        array_.Add(ElementOf(answer, withNames_).get());
        return array_.Flush();
    }
    if (answer.status != Status::kAnswered) return "";
    return (withNames_ ? NameText(answer.oid) : OidToText(answer.oid)) + " = " +
           ValueText(answer, withNames_) + "\n";
}

}  // namespace vndiscover::host
