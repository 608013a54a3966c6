#include "values/json_output.h"

namespace vndiscover::host {

void AddText(cJSON* object, const char* name, std::string_view bytes) {
    const std::string text = PlainText(bytes.substr(0, bytes.find('\0')), Breaks::kKeepAll);
    cJSON_AddStringToObject(object, name, text.c_str());
}

void AddOctets(cJSON* object, std::string_view bytes) {
    AddText(object, "value", HexText(bytes, " "));
    AddText(object, "encoding", "hex");
}

void AddNumber(cJSON* object, const char* name, const std::string& decimal) {
    cJSON_AddRawToObject(object, name, decimal.c_str());
}

std::string PrintedJson(const cJSON* item) {
    const std::unique_ptr<char, decltype(&cJSON_free)> text(cJSON_PrintUnformatted(item),
                                                            &cJSON_free);
    return text ? text.get() : "";
}

// The library escapes C0 characters only; other control characters are replaced here.
std::string CompactJson(const cJSON* item) {
    const std::string text = PrintedJson(item);
    return text.empty() ? "null" : PlainText(text);
}

void JsonArray::Add(const cJSON* element) {
    text_ += (isEmpty_ ? "[\n  " : ",\n  ") + CompactJson(element);
    isEmpty_ = false;
}

std::string JsonArray::Finish() { return Flush() + (isEmpty_ ? "[]\n" : "\n]\n"); }

JsonItem ParseDocument(std::string_view text) {
    return JsonItem(cJSON_ParseWithLength(text.data(), text.size()));
}

}  // namespace vndiscover::host
