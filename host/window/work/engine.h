// The window's access to the network: by VnDiscover.dll, in tests by a script.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "device/ask_process.h"
#include "model/asking/call_text.h"
#include "model/asking/host_diagnosis.h"
#include "model/asking/walk.h"
#include "model/computer/computer_report.h"
#include "model/printer/fleet.h"
#include "model/printer/printer_reader.h"
#include "model/scan/scan.h"

namespace vndiscover::host {

// By which devices are asked, as in the SNMP settings.
struct Credentials {
    // At least one, tried in this order. UTF-8; an empty one is the module's default.
    std::vector<std::string> communities{"", "public"};
    std::shared_ptr<const Security> security;  // the SNMPv3 user; null: none
    std::wstring profile;                      // which has this user; empty: none
};

// One call of the module: one protocol over one version of IP.
struct SweepStep {
    SweepKind kind = SweepKind::kSnmpV1;
    bool useIPv6 = false;
    Oid oid;            // of SNMP: what to request
    std::string types;  // of WS-Discovery: what to probe for
    Login login;        // of SNMP; has the user for SNMPv3 only
};

struct AskTarget {
    std::string address;
    Login login{};
    bool isLoginKnown = false;                    // the device has answered with this login
    std::vector<std::string> otherCommunities{};  // to try if it is silent

    SweepKind Kind() const { return login.security ? SweepKind::kSnmpV3 : SweepKind::kSnmpV1; }
    // `user`: null for none. Other communities are not tried any more.
    void UseUser(std::shared_ptr<const Security> user) {
        login.security = std::move(user);
        otherCommunities.clear();
    }
    // Returns false if there is no other one.
    bool UseNextCommunity() {
        if (otherCommunities.empty()) return false;
        login.community = otherCommunities.front();
        otherCommunities.erase(otherCommunities.begin());
        return true;
    }
};

// Each call blocks. At the same time there may be one SNMP sweep, one WS-Discovery sweep, and one
// call that asks a device without a reader.
class Engine {
  public:
    using OnAnswer = std::function<void(const char* address, std::string_view bytes)>;
    virtual ~Engine() = default;

    // Calls onAnswer on the calling thread for each answer, when it is delivered. Returns false if
    // nothing could be sent or the sweep was stopped before that.
    virtual bool Sweep(const SweepStep& step, const OnAnswer& onAnswer) = 0;
    // May be called on any thread. It has no effect before a sweep runs, so it must be repeated.
    virtual void StopSweeps() = 0;
    // mayGoOn is called before each request. A request takes up to 12 s.
    virtual PrinterAnswers Read(const AskTarget& target, std::function<bool()> mayGoOn) = 0;
    // One round of reading a device for the list. Without a reader, this process asks it.
    virtual FleetDevice ReadForList(const AskTarget& target, const FleetDevice& job, Reader* reader,
                                    std::function<bool()> mayGoOn) = 0;
    // How many readers may ask at the same time.
    virtual size_t MaxReaders() const { return 0; }
    // May be called on any thread.
    virtual std::unique_ptr<Reader> MakeReader(const std::vector<Login>& /*logins*/) {
        return nullptr;
    }
    using OnVariable = std::function<bool(const Answer&)>;  // returns false to end the walk
    virtual WalkEnd Walk(const AskTarget& target, const Oid& root, std::function<bool()> mayGoOn,
                         const OnVariable& onVariable) = 0;
    // Runs the steps of host_diagnosis.h over SNMPv1 and SNMPv3. mayGoOn is called before each.
    virtual HostDiagnosis Diagnose(const AskTarget& target, std::function<bool()> mayGoOn) = 0;

    // About this computer; these send nothing.
    virtual AdapterList IPv4() = 0;
    virtual ComputerReport Report() = 0;

    // `onCall` is called after each call of the module, on the same thread. Must not be set while
    // another method runs.
    using OnCall = std::function<void(Call call)>;
    void SetOnCall(OnCall onCall) { onCall_ = std::move(onCall); }

  protected:
    void ReportCall(Call call) const {
        if (onCall_) onCall_(std::move(call));
    }

  private:
    OnCall onCall_;
};

// In module_engine.cpp: the engine with the module, and the call that a step or a request makes,
// without secrets. `probe`: for WS-Discovery.
std::unique_ptr<Engine> MakeModuleEngine();
Call CallOf(const SweepStep& step, const std::string& probe);
Call CallOf(const AskTarget& target, const Oid& oid);
Call PingOf(const std::string& address);

}  // namespace vndiscover::host
