#include "device/security.h"

#include <windows.h>

namespace vndiscover::host {

Secret::~Secret() {
    if (!text_.empty()) SecureZeroMemory(text_.data(), text_.size() * sizeof(wchar_t));
}

}  // namespace vndiscover::host
