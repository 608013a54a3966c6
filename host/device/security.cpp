#include "device/security.h"

#include <windows.h>

namespace vndiscover::host {

Secret::Secret(std::wstring&& text) : text_(text.c_str(), text.c_str() + text.size() + 1) {
    SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t));
    text.clear();
}

Secret::~Secret() {
    if (!text_.empty()) SecureZeroMemory(text_.data(), text_.size() * sizeof(wchar_t));
}

}  // namespace vndiscover::host
