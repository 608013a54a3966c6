// The module's labels for SNMPv3 protocols, and other spellings of them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vndiscover::host {

// "sha256", "SHA-256", "sha2-256", "SHA-2(256)" all give "SHA-2(256)". Empty if there is no such
// protocol: the module would take an unknown label for "no authentication" and send unprotected
// requests.
std::optional<std::string> AuthLabel(std::string_view text);

// "des", "aes", "aes128", "AES-128" ...
std::optional<std::string> PrivLabel(std::string_view text);

// For help texts and hints.
extern const char kAuthProtocols[];
extern const char kPrivProtocols[];

}  // namespace vndiscover::host
