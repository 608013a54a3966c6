// The system uses UTF-16, the module's narrow arguments the ANSI code page, all else UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace vndiscover::host {

std::wstring ToWide(std::string_view utf8);
std::string ToUtf8(std::wstring_view wide);
std::string ToAnsi(std::string_view utf8);

}  // namespace vndiscover::host
