#include <vndiscover.h>

#include "cli/commands.h"
#include "device/security_labels.h"
#include "platform/console.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

// From the command line, otherwise from the environment, otherwise from the user. Rejects an empty
// password: it would give no key, and the module would send its requests unprotected.
Secret FetchPassword(const std::string& given, const char* option, const wchar_t* variable,
                     const char* prompt) {
    Secret password(ToWide(given));
    if (password.IsEmpty()) password = Secret(Environment(variable));
    if (password.IsEmpty()) password = Secret(PromptHidden(prompt).value_or(std::wstring()));
    if (password.IsEmpty()) {
        throw CLI::ValidationError(option, "a password is missing: give it with " +
                                               std::string(option) + " or in the variable " +
                                               ToUtf8(variable));
    }
    return password;
}

std::wstring Label(const std::optional<std::string>& label, const char* option, const char* known) {
    if (!label)
        throw CLI::ValidationError(option, std::string("unknown protocol; use one of ") + known);
    return ToWide(*label);
}

}  // namespace

void AddV3Options(CLI::App& command, V3Options& options) {
    const std::string group = "SNMPv3";
    CLI::Option* v3 =
        command.add_flag("--v3", options.isOn, "Use SNMPv3 instead of SNMPv1; needs -u");
    v3->group(group);
    const auto add = [&](const char* name, std::string& value, const std::string& help,
                         const char* type) {
        CLI::Option* option = command.add_option(name, value, help);
        return option->needs(v3)->group(group)->type_name(type);
    };
    add("-u,--user", options.user, "User name", "USER");
    add("-a,--auth", options.authProtocol, kAuthProtocols, "PROTO");
    add("-A,--auth-pass", options.authPassword, "Password [VNDISCOVER_AUTH_PASS, or prompt]",
        "PASS");
    add("-x,--priv", options.privProtocol, kPrivProtocols, "PROTO");
    add("-X,--priv-pass", options.privPassword, "Password [VNDISCOVER_PRIV_PASS, or prompt]",
        "PASS");
}

std::shared_ptr<const Security> ResolveSecurity(const V3Options& options) {
    if (!options.isOn) return nullptr;
    Security security;
    if (options.user.empty()) throw CLI::ValidationError("-u", "--v3 needs a user name");
    if (options.user.size() > VN_USER_NAME_MAX)
        throw CLI::ValidationError("-u", "127 bytes at most");
    security.user = ToWide(options.user);
    security.useAuth = !options.authProtocol.empty();
    security.usePriv = !options.privProtocol.empty();
    if (!security.useAuth && (security.usePriv || !options.authPassword.empty())) {
        throw CLI::ValidationError("-a", "privacy and passwords need an authentication protocol");
    }
    if (!security.usePriv && !options.privPassword.empty()) {
        throw CLI::ValidationError("-x", "-X needs a privacy protocol");
    }
    // Both labels are checked before a password is prompted for.
    if (security.useAuth)
        security.authLabel = Label(AuthLabel(options.authProtocol), "-a", kAuthProtocols);
    if (security.usePriv)
        security.privLabel = Label(PrivLabel(options.privProtocol), "-x", kPrivProtocols);
    if (security.useAuth) {
        security.authPassword =
            FetchPassword(options.authPassword, "-A", kAuthVariable, "Authentication password: ");
    }
    if (security.usePriv) {
        security.privPassword =
            FetchPassword(options.privPassword, "-X", kPrivVariable, "Privacy password: ");
    }
    return std::make_shared<const Security>(std::move(security));
}

}  // namespace vndiscover::host
