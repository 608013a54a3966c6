// The system uses UTF-16, the module's narrow arguments the ANSI code page, all else UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vndiscover::host {

std::wstring ToWide(std::string_view utf8);
std::string ToUtf8(std::wstring_view wide);
std::string ToAnsi(std::string_view utf8);

// An error of the system, to be appended to a message: " (access denied, error 5)".
std::string ErrorText(uint32_t error);

// What the exception that is being handled says: "out of memory".
std::string ExceptionText();

}  // namespace vndiscover::host
