// What a reader gets first is one line for each login, of hexadecimal fields that begin with a dot:
// community, user, protocols, passwords; without a user, the community alone. Then comes an empty
// line.
#include "window/work/reader_process.h"

#include <optional>

#include "platform/wide_text.h"
#include "values/split_text.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

std::string FieldOf(const std::string& text) { return "." + HexText(text, "") + " "; }

std::string LineOf(const AskTarget& login) {
    std::string line = FieldOf(login.credentials.community);
    const Security* const user = login.credentials.security.get();
    if (login.kind != SweepKind::kSnmpV3 || !user) return line;
    for (const wchar_t* text :
         {user->user.c_str(), user->authLabel.c_str(), user->privLabel.c_str(),
          user->authPassword.Get(), user->privPassword.Get()})
        line += FieldOf(ToUtf8(text));
    return line;
}

AskTarget LoginOf(const std::string& line) {
    std::vector<std::string> texts;
    for (const std::string& field : SplitText(line, " "))
        texts.push_back(ParseHex(field.substr(1)).value_or(""));
    AskTarget login;
    if (!texts.empty()) login.credentials.community = texts[0];
    if (texts.size() < 6) return login;
    auto user = std::make_shared<Security>();
    user->user = ToWide(texts[1]);
    user->authLabel = ToWide(texts[2]);
    user->privLabel = ToWide(texts[3]);
    user->authPassword = Secret(ToWide(texts[4]));
    user->privPassword = Secret(ToWide(texts[5]));
    user->useAuth = !user->authLabel.empty();
    user->usePriv = !user->privLabel.empty();
    login.kind = SweepKind::kSnmpV3;
    login.credentials.security = std::move(user);
    return login;
}

}  // namespace

Device DeviceOf(const AskTarget& target) {
    Device device(target.address, ToAnsi(target.credentials.community), "");
    if (target.kind == SweepKind::kSnmpV3) device.Use(target.credentials.security);
    return device;
}

ReaderProcess::ReaderProcess(const std::vector<AskTarget>& logins, HANDLE job)
    : process_(ToWide(kReaderOption).c_str(), job) {
    for (const AskTarget& login : logins) process_.Say(LineOf(login));
    process_.Say("");
}

void ServeReader() {
    std::vector<AskTarget> logins;
    for (std::string line; ReadLine(stdin, line) && line.find('.') != std::string::npos;)
        logins.push_back(LoginOf(line));
    // The device that was asked last is kept: it may have learned how it is reached.
    std::optional<Device> device;
    std::pair<size_t, std::string> last;
    ServeAskProcess([&](size_t login, const std::string& address, const Oid& oid) {
        if (login >= logins.size()) return Failed(Status::kSendFailed, oid);
        if (!device || last != std::pair(login, address)) {
            AskTarget target = logins[login];
            target.address = address;
            device = DeviceOf(target);
            last = {login, address};
        }
        return device->GetNext(oid);
    });
}

}  // namespace vndiscover::host
