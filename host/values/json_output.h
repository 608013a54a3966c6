// JSON for programs that read our output.
#ifndef VNDISCOVER_HOST_VALUES_JSON_OUTPUT_H
#define VNDISCOVER_HOST_VALUES_JSON_OUTPUT_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct cJSON;

namespace vndiscover::host {

struct JsonDelete {
    void operator()(cJSON* item) const;
};
using JsonItem = std::unique_ptr<cJSON, JsonDelete>;

// Adds a string member, made fit for a document: valid UTF-8, control characters only as JSON
// escapes.
void AddText(cJSON* object, const char* name, std::string_view bytes);
void AddTexts(cJSON* object, const char* name, const std::vector<std::string>& texts);
// Adds a number member with all its digits, which a double would not keep.
void AddNumber(cJSON* object, const char* name, const std::string& decimal);

// One line, without control characters.
std::string CompactJson(const cJSON* item);

// One JSON array, an element a line, written while its elements still arrive: print what each call
// returns.
class JsonArray {
  public:
    // The text so far plus this element; taken over by the caller with Take.
    void Add(const cJSON* element);
    std::string Take() { return std::exchange(text_, {}); }
    // What is left of the text, with the closing bracket.
    std::string Finish();

  private:
    std::string text_;
    bool isEmpty_ = true;
};

// Null for a text that does not parse, such as a document that was cut.
JsonItem ParseDocument(std::string_view text);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_VALUES_JSON_OUTPUT_H
