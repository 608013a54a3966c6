#include "window/module_engine.h"

#include <vndiscover.h>

#include <cstring>

#include "device/device.h"
#include "model/json_request.h"
#include "platform/result_window.h"
#include "platform/this_computer.h"
#include "platform/wide_text.h"
#include "values/oid_text.h"
#include "wsd/wsd_message.h"

namespace vndiscover::host {
namespace {

constexpr UINT kUnusedTimeoutMs = 5000;
constexpr UINT kWsdSilenceMs = 3000;
constexpr UINT kMessage = ResultWindow::kMessage;

const Oid& DefaultOid() {
    static const Oid oid = *ParseOid(VN_DEFAULT_DISCOVERY_OID);
    return oid;
}

void SweepV1(HWND window, const SweepStep& step) {
    DiscoverDevicesByOID(window, kMessage, kUnusedTimeoutMs, step.useIPv6 ? 1 : 0,
                         ToWide(OidToText(step.oid)).c_str(), nullptr,
                         ToWide(step.credentials.community).c_str(), nullptr);
}

// Sweeps over SNMPv3 take an OID in a JSON request alone.
void SweepV3(HWND window, const SweepStep& step) {
    const Security& user = *step.credentials.security;
    const BYTE useIPv6 = step.useIPv6 ? 1 : 0;
    const BYTE useAuth = user.useAuth ? 1 : 0;
    const BYTE usePriv = user.usePriv ? 1 : 0;
    if (step.oid == DefaultOid()) {
        DiscoverSnmpV3(window, kMessage, kUnusedTimeoutMs, useIPv6, user.user.c_str(), useAuth,
                       user.authPassword.Get(), usePriv, user.privPassword.Get(),
                       user.authLabel.c_str(), user.privLabel.c_str());
        return;
    }
    DiscoverV3DevicesByOIDjson(window, kMessage, kUnusedTimeoutMs, useIPv6,
                               ToWide(RequestFor(OidToText(step.oid))).c_str(), user.user.c_str(),
                               useAuth, user.authPassword.Get(), usePriv, user.privPassword.Get(),
                               user.authLabel.c_str(), user.privLabel.c_str());
}

void SweepWsd(HWND window) {
    const std::string probe = BuildProbe("wsdp:Device", NewUuid());
    DiscoverSoap(window, kMessage, kWsdSilenceMs, probe.data(), static_cast<int32_t>(probe.size()));
}

Security CopyOf(const Security& user) {
    Security copy;
    copy.user = user.user;
    copy.authLabel = user.authLabel;
    copy.privLabel = user.privLabel;
    copy.authPassword = Secret(user.authPassword.Get());
    copy.privPassword = Secret(user.privPassword.Get());
    copy.useAuth = user.useAuth;
    copy.usePriv = user.usePriv;
    return copy;
}

}  // namespace

AnswerForm FormOf(const SweepStep& step) {
    if (step.kind == SweepKind::kWsd) return AnswerForm::kReply;
    const bool isDocument = step.kind == SweepKind::kSnmpV3 && step.oid != DefaultOid();
    return isDocument ? AnswerForm::kDocument : AnswerForm::kValue;
}

void ModuleEngine::Sweep(const SweepStep& step, const OnAnswer& onAnswer) {
    const bool isWsd = step.kind == SweepKind::kWsd;
    // Made here, on the sweeping thread: the module then calls it directly and waits for nobody.
    const ResultWindow window([&](const char* address, const char* value) {
        // A reply that fills its buffer has no terminating zero.
        onAnswer(address, {value, isWsd ? strnlen(value, VN_SOAP_REPLY_SIZE) : strlen(value)});
    });
    if (isWsd) {
        SweepWsd(window.Handle());
    } else if (step.kind == SweepKind::kSnmpV1) {
        SweepV1(window.Handle(), step);
    } else if (step.credentials.security) {
        SweepV3(window.Handle(), step);
    }
}

void ModuleEngine::StopSnmp() { StopDiscoverSnmp(); }
void ModuleEngine::StopWsd() { StopDiscoverSoap(); }

PrinterAnswers ModuleEngine::Read(const AskTarget& target, std::function<bool()> mayGoOn) {
    Device device(target.address, ToAnsi(target.credentials.community), "");
    if (target.kind == SweepKind::kSnmpV3 && target.credentials.security)
        device.Use(CopyOf(*target.credentials.security));
    Asker asker = AskerOf(device);
    asker.mayGoOn = std::move(mayGoOn);
    return ReadPrinter(asker);
}

AdapterList ModuleEngine::IPv4() { return ThisComputer().IPv4(); }
ComputerReport ModuleEngine::Report() { return ReportOn(ThisComputer()); }

}  // namespace vndiscover::host
