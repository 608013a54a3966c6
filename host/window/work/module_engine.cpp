#include "window/work/engine.h"

#include <vndiscover.h>

#include <cstring>

#include "device/device.h"
#include "device/fleet_readers.h"
#include "platform/result_window.h"
#include "platform/this_computer.h"
#include "platform/wide_text.h"
#include "values/object_names.h"
#include "values/oid_text.h"
#include "values/utc_time.h"
#include "wsd/wsd_message.h"

namespace vndiscover::host {
namespace {

class Stopwatch {
  public:
    Call Timed(Call call) const {
        call.time = time_;
        call.milliseconds = static_cast<unsigned>(GetTickCount64() - startMs_);
        return call;
    }

  private:
    std::string time_ = UtcNow();
    ULONGLONG startMs_ = GetTickCount64();
};

class ModuleEngine : public Engine {
  public:
    bool Sweep(const SweepStep& step, const OnAnswer& onAnswer) override {
        const bool isWsd = step.kind == SweepKind::kWsd;
        // The window is of this thread, so that the module calls it directly.
        size_t answers = 0;
        const ResultWindow window([&](const char* address, const char* value) {
            ++answers;
            // A reply that fills its buffer has no terminating zero.
            onAnswer(address, {value, isWsd ? strnlen(value, VN_SOAP_REPLY_SIZE) : strlen(value)});
        });
        const std::string probe = isWsd ? BuildProbe(step.types, NewUuid()) : "";
        const Stopwatch watch;
        const bool wasSent =
            isWsd ? RunProbe(window.Handle(), ResultWindow::kMessage, kWsdSilenceMs, probe)
                  : RunSweep(window.Handle(), ResultWindow::kMessage,
                             SweepFor(step.login, step.oid, step.useIPv6));
        Call call = watch.Timed(CallOf(step, probe));
        call.result = "0";  // always
        call.answers = answers;
        ReportCall(std::move(call));
        window.Rethrow();
        return wasSent || answers > 0;
    }

    void StopSweeps() override {
        StopDiscoverSnmp();
        StopDiscoverSoap();
    }

    PrinterAnswers Read(const AskTarget& target, std::function<bool()> mayGoOn) override {
        const Device device(target.login, target.address);
        const Asker asker = Reported(AskerOf(device), target, std::move(mayGoOn), 0);
        return ReadPrinter(asker, true);
    }

    FleetDevice ReadForList(const AskTarget& target, const FleetDevice& job, Reader* reader,
                            std::function<bool()> mayGoOn) override {
        const Device device(target.login, target.address);
        Asker asker = AskerOf(device);
        if (reader) {
            asker.getNext = [&](const Oid& oid) {
                return reader->GetNext(job.login, target.address, oid);
            };
        }
        return ReadJob(job, Reported(std::move(asker), target, std::move(mayGoOn), 0));
    }

    size_t MaxReaders() const override { return kMaxReaders; }
    std::unique_ptr<Reader> MakeReader(const std::vector<Login>& logins) override {
        return std::make_unique<ReaderProcess>(logins, job_.Get());
    }

    WalkEnd Walk(const AskTarget& target, const Oid& root, std::function<bool()> mayGoOn,
                 const OnVariable& onVariable) override {
        const Device device(target.login, target.address);
        return WalkSubtree(Reported(AskerOf(device), target, std::move(mayGoOn), ++walks_), root,
                           onVariable);
    }

    HostDiagnosis Diagnose(const AskTarget& target, std::function<bool()> mayGoOn) override {
        AskTarget v1 = target, v3 = target;
        v1.login.security = nullptr;
        // An empty user name reaches the SNMPv3 engine.
        if (!v3.login.security) v3.login.security = std::make_shared<const Security>();
        const Device v1Device(v1.login, v1.address), v3Device(v3.login, v3.address);
        DiagnosisSteps steps;
        steps.ping = [&] {
            const Stopwatch watch;
            const bool hasAnswered = VxPing(ToAnsi(target.address).c_str(), kPingTimeoutMs) != 0;
            Call call = watch.Timed(PingOf(target.address));
            call.result = hasAnswered ? "1" : "0";
            ReportCall(std::move(call));
            return hasAnswered;
        };
        steps.v1 = Reported(AskerOf(v1Device), v1, nullptr, 0);
        steps.v3 = Reported(AskerOf(v3Device), v3, nullptr, 0);
        steps.hasUser = target.login.security != nullptr;
        steps.community = CommunityOf(target.login.community);
        steps.address = target.address;
        steps.hasRoute = HasRoute(target.address);
        steps.mayGoOn = std::move(mayGoOn);
        return host::Diagnose(steps);
    }

    AdapterList IPv4() override { return IPv4Adapters(); }
    ComputerReport Report() override { return ReportOn(ThisComputer()); }

  private:
    // Makes `asker` report each call. The target, and what `asker` uses, must outlive the result.
    Asker Reported(Asker asker, const AskTarget& target, std::function<bool()> mayGoOn,
                   unsigned walk) const {
        asker.mayGoOn = std::move(mayGoOn);
        asker.getNext = [this, &target, walk, ask = std::move(asker.getNext)](const Oid& oid) {
            const Stopwatch watch;
            Answer answer = ask(oid);
            Call call = watch.Timed(CallOf(target, oid));
            call.result = answer.status == Status::kAnswered
                              ? NameText(answer.oid) + " = " +
                                    FormatNamedValue(answer.oid, answer.type, answer.bytes)
                              : Problem(answer);
            if (answer.status == Status::kAnswered) call.walk = walk;  // a failure has its own row
            ReportCall(std::move(call));
            answer.time = UtcNow();
            return answer;
        };
        return asker;
    }

    unsigned walks_ = 0;
    const OwnedHandle job_ = EndingJob();  // its end ends the readers
};

// The module's default community is known to all; any other one is a secret.
void AddLogin(Call& call, const Login& login) {
    std::vector<CallArgument>& arguments = call.arguments;
    const auto secret = [&](const char* name, bool isSet, const char* variable) {
        arguments.push_back({name, isSet ? variable : "", isSet});
    };
    if (!login.security)
        return secret("readCommunity", !login.community.empty(), "VNDISCOVER_COMMUNITY");
    const Security& user = *login.security;
    arguments.push_back({"userName", ToUtf8(user.user)});
    arguments.push_back({"useAuth", user.UseAuth() ? "1" : "0"});
    secret("authPassword", !user.authPassword.IsEmpty(), "VNDISCOVER_AUTH_PASS");
    arguments.push_back({"usePriv", user.UsePriv() ? "1" : "0"});
    secret("privPassword", !user.privPassword.IsEmpty(), "VNDISCOVER_PRIV_PASS");
    arguments.push_back({"authProtocol", ToUtf8(user.authLabel)});
    arguments.push_back({"privProtocol", ToUtf8(user.privLabel)});
}

}  // namespace

std::unique_ptr<Engine> MakeModuleEngine() { return std::make_unique<ModuleEngine>(); }

Call CallOf(const SweepStep& step, const std::string& probe) {
    Call call;
    if (step.kind == SweepKind::kWsd) {
        call.name = "DiscoverSoap";
        call.arguments = {{"timeout", std::to_string(kWsdSilenceMs)}, {"probe", probe}};
        return call;
    }
    const SnmpSweep sweep = SweepFor(step.login, step.oid, step.useIPv6);
    call.name = !sweep.security         ? "DiscoverDevicesByOID"
                : sweep.request.empty() ? "DiscoverSnmpV3"
                                        : "DiscoverV3DevicesByOIDjson";
    call.arguments = {{"timeout", std::to_string(kUnusedSweepTimeoutMs)},
                      {"useIPv6", step.useIPv6 ? "1" : "0"}};
    if (!sweep.security || !sweep.request.empty())
        call.arguments.push_back({"oid", OidToText(step.oid)});
    if (!sweep.request.empty()) call.arguments.push_back({"jsonRequest", ToUtf8(sweep.request)});
    AddLogin(call, step.login);
    return call;
}

Call PingOf(const std::string& address) {
    Call call;
    call.name = "VxPing";
    call.arguments = {{"address", address}, {"timeout", std::to_string(kPingTimeoutMs)}};
    return call;
}

Call CallOf(const AskTarget& target, const Oid& oid) {
    Call call;
    call.name = target.login.security ? "GetNextSnmpRequestV3" : "GetNextSnmpRequestRaw";
    call.arguments = {{"host", target.address},
                      {"oid", OidToText(oid)},
                      {"timeout", std::to_string(kUnusedTimeoutMs)},
                      {"retries", std::to_string(kUnusedRetries)}};
    AddLogin(call, target.login);
    return call;
}

}  // namespace vndiscover::host
