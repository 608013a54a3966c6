#pragma once

#include <cstdint>
#include <string>

namespace vndiscover::host {

// An error of the system, to be appended to a message: " (access denied, error 5)".
std::string ErrorText(uint32_t error);

// What the exception that is being handled says: "out of memory".
std::string ExceptionText();

}  // namespace vndiscover::host
