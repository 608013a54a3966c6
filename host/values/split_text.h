#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vndiscover::host {

// The parts of a text between any of `separators`; none is empty.
std::vector<std::string> SplitText(std::string_view text, std::string_view separators);

}  // namespace vndiscover::host
