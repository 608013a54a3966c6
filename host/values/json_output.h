// JSON output for other programs.
#pragma once

#include <cjson/cJSON.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "values/text.h"

namespace vndiscover::host {

struct JsonDelete {
    void operator()(cJSON* item) const { cJSON_Delete(item); }
};
using JsonItem = std::unique_ptr<cJSON, JsonDelete>;

// Adds a string member, as valid UTF-8 with control characters only as JSON escapes.
void AddText(cJSON* object, const char* name, std::string_view bytes);
template <class Texts>
void AddTexts(cJSON* object, const char* name, const Texts& texts) {
    cJSON* const array = cJSON_AddArrayToObject(object, name);
    for (const std::string& text : texts)
        cJSON_AddItemToArray(array, cJSON_CreateString(PlainText(text, Breaks::kKeepAll).c_str()));
}
// Adds octets that are no text in hex, as "value", and "encoding" to say so.
void AddOctets(cJSON* object, std::string_view bytes);
// Adds a number member with all its digits, which a double could not hold.
void AddNumber(cJSON* object, const char* name, const std::string& decimal);
template <class Number>
void AddNumber(cJSON* object, const char* name, Number number) {
    AddNumber(object, name, std::to_string(number));
}

// Adds an array with an object for each row: fill(object, row) adds its members.
template <class Rows, class Fill>
void AddObjects(cJSON* parent, const char* name, const Rows& rows, Fill fill) {
    cJSON* const array = cJSON_AddArrayToObject(parent, name);
    for (const auto& row : rows) {
        cJSON* const object = cJSON_CreateObject();
        cJSON_AddItemToArray(array, object);
        fill(object, row);
    }
}

// One line; bytes from outside are unchanged. Empty if there is no item, or no memory.
std::string PrintedJson(const cJSON* item);
// One line, without control characters.
std::string CompactJson(const cJSON* item);

// One JSON array, one element per line, written while elements arrive.
class JsonArray {
  public:
    void Add(const cJSON* element);
    // Returns the text that no call has returned yet.
    std::string Flush() { return std::exchange(text_, {}); }
    // Returns the rest of the text, with the closing bracket.
    std::string Finish();

  private:
    std::string text_;
    bool isEmpty_ = true;
};

// Null if the text does not parse, for example because it was cut.
JsonItem ParseDocument(std::string_view text);

}  // namespace vndiscover::host
