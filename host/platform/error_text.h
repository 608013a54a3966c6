#ifndef VNDISCOVER_HOST_PLATFORM_ERROR_TEXT_H
#define VNDISCOVER_HOST_PLATFORM_ERROR_TEXT_H

#include <cstdint>
#include <string>

namespace vndiscover::host {

// An error of the system, to be appended to a message: " (access denied, error 5)". Frequent errors
// of files have words.
std::string ErrorText(uint32_t error);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_PLATFORM_ERROR_TEXT_H
