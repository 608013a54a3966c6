#include "model/asking/json_request.h"

#include <cjson/cJSON.h>

#include "values/module_types.h"

namespace vndiscover::host {
namespace {

std::string_view WithoutByteOrderMark(std::string_view text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (text.substr(0, kMark.size()) == kMark) text.remove_prefix(kMark.size());
    return text;
}

}  // namespace

std::optional<std::string> PrepareRequest(std::string_view text, std::string& problem) {
    const std::string_view request = WithoutByteOrderMark(text);
    const JsonItem parsed(cJSON_ParseWithLength(request.data(), request.size()));
    if (!cJSON_IsObject(parsed.get())) {
        problem = "does not hold a JSON object";
        return std::nullopt;
    }
    std::string compact = PrintedJson(parsed.get());
    if (compact.size() < kJsonRequestSize) return compact;
    problem = "is too long: " + std::to_string(compact.size()) + " bytes without blanks, but " +
              std::to_string(kJsonRequestSize - 1) + " at most";
    return std::nullopt;
}

std::string RequestFor(const std::string& oid) {
    return "{\"DiscoverOID\":\"" + oid + "\",\"GET\":{\"" + oid + "\":\"\"}}";
}

std::vector<std::pair<std::string, std::string>> AnswersOf(const cJSON* document) {
    std::vector<std::pair<std::string, std::string>> answers;
    const cJSON* member = nullptr;
    cJSON_ArrayForEach(member, cJSON_GetObjectItem(document, "GET")) {
        if (!member->string || !cJSON_IsString(member)) continue;
        answers.emplace_back(member->string, member->valuestring);
    }
    return answers;
}

}  // namespace vndiscover::host
