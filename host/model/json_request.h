// The JSON requests of a sweep, and the documents that devices' answers fill.
#ifndef VNDISCOVER_HOST_MODEL_JSON_REQUEST_H
#define VNDISCOVER_HOST_MODEL_JSON_REQUEST_H

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "values/json_output.h"

namespace vndiscover::host {

// A JSON request as the module takes it: without blanks, for the size of a request is limited.
// Empty, with `problem`: no JSON object, or 2,048 bytes and more.
std::optional<std::string> PrepareRequest(std::string_view text, std::string& problem);

// A request that asks each device for one OID only.
std::string RequestFor(const std::string& oid);

// The names and strings under "GET".
std::vector<std::pair<std::string, std::string>> AnswersOf(const cJSON* document);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_JSON_REQUEST_H
