#include "values/split_text.h"

#include <algorithm>

namespace vndiscover::host {

std::vector<std::string> SplitText(std::string_view text, std::string_view separators) {
    std::vector<std::string> parts;
    while (true) {
        const size_t start = text.find_first_not_of(separators);
        if (start == std::string_view::npos) return parts;
        text.remove_prefix(start);
        const size_t end = std::min(text.find_first_of(separators), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

}  // namespace vndiscover::host
