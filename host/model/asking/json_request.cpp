#include "model/asking/json_request.h"

#include <cjson/cJSON.h>

#include "values/module_types.h"
#include "values/object_names.h"

namespace vndiscover::host {
namespace {

// "sysName.0" as ".1.3.6.1.2.1.1.5.0"; what is no name stays.
std::string Numeric(const char* text) {
    const auto oid = ParseOidOrName(text ? text : "");
    return oid && !ParseOid(text) ? OidToText(*oid) : text ? text : "";
}

void ReplaceNames(cJSON* request) {
    cJSON* const discovery = cJSON_GetObjectItem(request, "DiscoverOID");
    if (cJSON_IsString(discovery))
        cJSON_SetValuestring(discovery, Numeric(discovery->valuestring).c_str());
    cJSON* const list = cJSON_GetObjectItem(request, "GET");
    for (int left = cJSON_IsObject(list) ? cJSON_GetArraySize(list) : 0; left > 0; --left) {
        cJSON* const member = cJSON_DetachItemFromArray(list, 0);
        cJSON_AddItemToObject(list, Numeric(member->string).c_str(), member);
    }
}

}  // namespace

std::optional<std::string> PrepareRequest(std::string_view text, std::string& problem) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark)
        text.remove_prefix(kByteOrderMark.size());
    const JsonItem parsed(cJSON_ParseWithLength(text.data(), text.size()));
    if (!cJSON_IsObject(parsed.get())) {
        problem = "does not hold a JSON object";
        return std::nullopt;
    }
    ReplaceNames(parsed.get());
    std::string compact = PrintedJson(parsed.get());
    if (compact.size() < kJsonRequestSize) return compact;
    problem = "is too long: " + std::to_string(compact.size()) + " bytes without blanks, but " +
              std::to_string(kJsonRequestSize - 1) + " at most";
    return std::nullopt;
}

std::string RequestFor(const std::string& oid) {
    return "{\"DiscoverOID\":\"" + oid + "\",\"GET\":{\"" + oid + "\":\"\"}}";
}

std::vector<std::string> OidTextsOf(const cJSON* request) {
    std::vector<std::string> texts;
    const cJSON* const discovery = cJSON_GetObjectItem(request, "DiscoverOID");
    const bool isGiven = cJSON_IsString(discovery) && *discovery->valuestring;
    texts.emplace_back(isGiven ? discovery->valuestring : kDefaultDiscoveryOid);
    for (const auto& [name, value] : AnswersOf(request)) texts.push_back(name);
    return texts;
}

bool IsCutDocument(std::string_view document) {
    return document.size() + 1 >= kValueSize && !ParseDocument(document);
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
