// JSON requests of a sweep, and the documents filled in with the answers.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "values/json_output.h"
#include "values/oid_text.h"

namespace vndiscover::host {

// A JSON request for the module, with numeric OIDs for names, and without blanks. Empty, with the
// reason in `problem`, if the text is not a JSON object or has 2,048 bytes or more.
std::optional<std::string> PrepareRequest(std::string_view text, std::string& problem);

std::string RequestFor(const std::string& oid);

// The OIDs that devices are asked for, the first one to find them. A mistyped name stays as it is.
std::vector<std::string> OidTextsOf(const cJSON* request);

// Whether a filled-in document does not end within a result message, which cuts it.
bool IsCutDocument(std::string_view document);

// The names and strings under "GET".
std::vector<std::pair<std::string, std::string>> AnswersOf(const cJSON* document);

}  // namespace vndiscover::host
