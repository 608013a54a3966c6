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

// Of the settings.
struct Credentials {
    // Asked one after the other, never empty. UTF-8; an empty one is the module's default.
    std::vector<std::string> communities{"", "public"};
    std::shared_ptr<const Security> security;  // null: there is no SNMPv3 user
    std::wstring profile;                      // from which the user is; empty: none
};

// One call of the module: one protocol over one version of IP.
struct SweepStep {
    SweepKind kind = SweepKind::kSnmpV1;
    bool useIPv6 = false;
    Oid oid;            // to request, for SNMP
    std::string types;  // to probe for, for WS-Discovery
    Login login;        // for SNMP; has the user for SNMPv3 only
};

struct AskTarget {
    std::string address;
    Login login{};
    bool isLoginKnown = false;                    // the device has answered by it
    std::vector<std::string> otherCommunities{};  // to try if it is silent

    SweepKind Kind() const { return login.security ? SweepKind::kSnmpV3 : SweepKind::kSnmpV1; }
    // Who is asked once, not once for each community.
    void UseUser(std::shared_ptr<const Security> user) {
        login.security = std::move(user);
        otherCommunities.clear();
    }
    // Returns false if there is none.
    bool UseNextCommunity() {
        if (otherCommunities.empty()) return false;
        login.community = otherCommunities.front();
        otherCommunities.erase(otherCommunities.begin());
        return true;
    }
};

// Each call blocks. One SNMP sweep, one WS-Discovery sweep, one reading or walk at a time.
class Engine {
  public:
    using OnAnswer = std::function<void(const char* address, std::string_view bytes)>;
    virtual ~Engine() = default;

    // Calls onAnswer on the calling thread, for each answer as it is delivered. Returns false if
    // nothing could be sent, or it was stopped at once.
    virtual bool Sweep(const SweepStep& step, const OnAnswer& onAnswer) = 0;
    // For any thread. Without a running sweep it has no effect, so it must be repeated.
    virtual void StopSweeps() = 0;
    // mayGoOn is called before each request, which takes 12 s at most.
    virtual PrinterAnswers Read(const AskTarget& target, std::function<bool()> mayGoOn) = 0;
    // One round of reading a device for the list; in this process if there is no reader.
    virtual FleetDevice ReadForList(const AskTarget& target, const FleetDevice& job, Reader* reader,
                                    std::function<bool()> mayGoOn) = 0;
    // How many readers may ask side by side.
    virtual size_t MaxReaders() const { return 0; }
    // For any thread.
    virtual std::unique_ptr<Reader> MakeReader(const std::vector<Login>& /*logins*/) {
        return nullptr;
    }
    using OnVariable = std::function<bool(const Answer&)>;  // false: no more
    virtual WalkEnd Walk(const AskTarget& target, const Oid& root, std::function<bool()> mayGoOn,
                         const OnVariable& onVariable) = 0;
    // Takes the steps of host_diagnosis.h over SNMPv1 and SNMPv3; mayGoOn is called before each.
    virtual HostDiagnosis Diagnose(const AskTarget& target, std::function<bool()> mayGoOn) = 0;

    // About this computer; these send nothing.
    virtual AdapterList IPv4() = 0;
    virtual ComputerReport Report() = 0;

    // Called after each call of the module, on its thread. Must be set while no other method runs.
    using OnCall = std::function<void(Call call)>;
    void SetOnCall(OnCall onCall) { onCall_ = std::move(onCall); }

  protected:
    void ReportCall(Call call) const {
        if (onCall_) onCall_(std::move(call));
    }

  private:
    OnCall onCall_;
};

}  // namespace vndiscover::host
