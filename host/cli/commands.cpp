#include "cli/commands.h"

#include <vndiscover.h>

#include <algorithm>
#include <map>

#include "platform/this_computer.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/module_types.h"
#include "values/text.h"

namespace vndiscover::host {

std::function<std::string()> StatusOf(const std::atomic<size_t>& count, const char* one,
                                      const char* many) {
    return [&count, one, many, startMs = GetTickCount64()] {
        return std::to_string((GetTickCount64() - startMs) / 1000) + " s, " +
               std::to_string(count) + " " + (count == 1 ? one : many);
    };
}

void WarnAtEnd(bool isStopped, size_t found, const std::string& nothing) {
    if (isStopped) {
        Warn("stopped");
    } else if (found == 0) {
        Warn(nothing + ": 'vndiscover doctor' looks for the cause");
    }
}

void CheckRequest(const char* argument, const std::string& community, const Oid& oid,
                  size_t valueSize) {
    const size_t size = ToAnsi(CommunityOf(community)).size() + RequestOctets(oid) + valueSize;
    if (size > kRequestMax) {
        throw CLI::ValidationError(
            argument, "community, OID and value have " + std::to_string(size) +
                          " bytes, but an SNMPv1 request holds " + std::to_string(kRequestMax));
    }
}

void CheckLongestCommunity(const std::string& community) {
    const size_t size = ToAnsi(community).size();
    if (size > kLongestCommunity) {
        throw CLI::ValidationError("--community", "has " + std::to_string(size) + " bytes, but " +
                                                      std::to_string(kLongestCommunity) +
                                                      " at most leave room for what is read");
    }
}

CLI::Option* AddFormat(CLI::App& command, Format& format, const std::vector<std::string>& names) {
    const auto choose = [&format, names](const std::string& text) {
        const auto name = std::find(names.begin(), names.end(), text);
        if (name == names.end())
            throw CLI::ValidationError("--format", "'" + text + "' is not one of " + Joined(names));
        format = static_cast<Format>(name - names.begin());
    };
    return command.add_option_function<std::string>("--format", choose, "Output: " + Joined(names))
        ->type_name("FORMAT");
}

CLI::App* AddDeviceCommand(CLI::App& app, const char* name, const char* help, const char* footer,
                           DeviceOptions& options) {
    CLI::App* command = app.add_subcommand(name, help);
    MustNotBeEmpty(command->add_option("HOST", options.host, "Address of the device")->required());
    command->add_option("-c,--community", options.community, "Read community [sesame]")
        ->type_name("NAME");
    AddFormat(*command, options.format);
    command->footer(footer);
    return command;
}

void WarnIfUnknown(const std::string& host) {
    if (HasAddress(host)) return;
    // The module would complete "10.77.3" to 10.77.0.3.
    if (host.find_first_not_of("0123456789.") == std::string::npos)
        throw CLI::ValidationError("HOST", "'" + host + "' is not an address");
    Warn("'" + host + "' is not an address, nor a name that has one");
}

namespace {

struct Field {
    const char* name;
    const char* help;
    const char* type;
    std::string V3Options::*value;
};
const Field kFields[] = {{"-u,--user", "User name", "USER", &V3Options::user},
                         {"-a,--auth", kAuthProtocols, "PROTO", &V3Options::authProtocol},
                         {"-A,--auth-pass", "Password [VNDISCOVER_AUTH_PASS, or prompt]", "PASS",
                          &V3Options::authPassword},
                         {"-x,--priv", kPrivProtocols, "PROTO", &V3Options::privProtocol},
                         {"-X,--priv-pass", "Password [VNDISCOVER_PRIV_PASS, or prompt]", "PASS",
                          &V3Options::privPassword}};

// "-u"
std::string ShortName(const Field& field) { return std::string(field.name).substr(0, 2); }

// From the command line, the environment or the user. Rejects an empty password: the module would
// send its requests unprotected. The second user's variables end in "_2".
Secret FetchPassword(const std::string& given, const char* option, std::wstring variable,
                     size_t number, const std::string& prompt) {
    if (number > 1) variable += L"_" + std::to_wstring(number);
    Secret password(ToWide(given));
    if (password.IsEmpty()) password = Secret(Environment(variable.c_str()));
    if (password.IsEmpty()) password = Secret(PromptHidden(prompt).value_or(std::wstring()));
    if (password.IsEmpty())
        throw CLI::ValidationError(option, "a password is missing: give it with " +
                                               std::string(option) + " or in the variable " +
                                               ToUtf8(variable));
    return password;
}

// Empty without a protocol.
std::wstring Label(const char* option, const std::string& given, const char* known,
                   const std::vector<Protocol>& protocols) {
    const auto label = given.empty() ? L"" : LabelOf(protocols, given);
    if (!label) throw CLI::ValidationError(option, "'" + given + "' is not one of " + known);
    return *label;
}

}  // namespace

void AddV3Options(CLI::App& command, V3Options& options) {
    CLI::Option* v3 =
        command.add_flag("--v3", options.isOn, "Use SNMPv3 instead of SNMPv1; needs -u");
    v3->group("SNMPv3");
    for (const Field& field : kFields) {
        CLI::Option* option = command.add_option(field.name, options.*field.value, field.help);
        option->needs(v3)->group("SNMPv3")->type_name(field.type);
    }
}

void AllowSeveralUsers(CLI::App& command) {
    constexpr auto kLast = CLI::MultiOptionPolicy::TakeLast;
    command.get_option("--v3")
        ->description("Also as this SNMPv3 user; may be given again, with -u")
        ->multi_option_policy(kLast);
    for (const Field& field : kFields)
        command.get_option(ShortName(field))->multi_option_policy(kLast)->allow_extra_args(false);
}

std::vector<V3Options> UsersOf(const CLI::App& command) {
    std::vector<V3Options> users;
    std::map<const CLI::Option*, size_t> read;
    for (const CLI::Option* option : command.parse_order()) {
        if (option->check_name("--v3")) {
            if (users.empty() || users.back().isOn) users.emplace_back();
            users.back().isOn = true;
        }
        for (const Field& field : kFields) {
            if (!option->check_name(ShortName(field))) continue;
            if (users.empty()) users.emplace_back();
            std::string& value = users.back().*field.value;
            if (!value.empty())
                throw CLI::ValidationError(ShortName(field),
                                           "given twice; each user begins with --v3");
            value = option->results()[read[option]++];
        }
    }
    return users;
}

std::shared_ptr<const Security> ResolveSecurity(const V3Options& options, size_t number) {
    if (!options.isOn) return nullptr;
    Security security;
    if (options.user.empty()) throw CLI::ValidationError("-u", "--v3 needs a user name");
    if (options.user.size() > VN_USER_NAME_MAX)
        throw CLI::ValidationError("-u", "127 bytes at most");
    security.user = ToWide(options.user);
    if (options.authProtocol.empty() &&
        (!options.privProtocol.empty() || !options.authPassword.empty()))
        throw CLI::ValidationError("-a", "privacy and passwords need an authentication protocol");
    if (options.privProtocol.empty() && !options.privPassword.empty())
        throw CLI::ValidationError("-x", "-X needs a privacy protocol");
    // Both labels are checked before a password is prompted for.
    security.authLabel = Label("-a", options.authProtocol, kAuthProtocols, kAuth);
    security.privLabel = Label("-x", options.privProtocol, kPrivProtocols, kPriv);
    const std::string whose = number == 1 ? ": " : " of '" + options.user + "': ";
    if (security.UseAuth())
        security.authPassword = FetchPassword(options.authPassword, "-A", L"VNDISCOVER_AUTH_PASS",
                                              number, "Authentication password" + whose);
    if (security.UsePriv())
        security.privPassword = FetchPassword(options.privPassword, "-X", L"VNDISCOVER_PRIV_PASS",
                                              number, "Privacy password" + whose);
    return std::make_shared<const Security>(std::move(security));
}

}  // namespace vndiscover::host
