// JSON output for other programs.
#pragma once

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

// Adds a string member, as valid UTF-8 with control characters only as JSON escapes.
void AddText(cJSON* object, const char* name, std::string_view bytes);
void AddTexts(cJSON* object, const char* name, const std::vector<std::string>& texts);
// Adds a number member with all its digits, which a double could not hold.
void AddNumber(cJSON* object, const char* name, const std::string& decimal);

// One line; bytes from outside are unchanged. Empty if there is no item, or no memory.
std::string PrintedJson(const cJSON* item);
// One line, without control characters.
std::string CompactJson(const cJSON* item);

// One JSON array, one element per line, written while elements arrive.
class JsonArray {
  public:
    void Add(const cJSON* element);
    // The text that no call has returned yet.
    std::string Flush() { return std::exchange(text_, {}); }
    // The rest of the text, with the closing bracket.
    std::string Finish();

  private:
    std::string text_;
    bool isEmpty_ = true;
};

// Null if the text does not parse, for example because it was cut.
JsonItem ParseDocument(std::string_view text);

}  // namespace vndiscover::host
