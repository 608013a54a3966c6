// What the window asks of the network. ModuleEngine does it through VnDiscover.dll; tests play an
// engine that follows a script.
#ifndef VNDISCOVER_HOST_WINDOW_ENGINE_H
#define VNDISCOVER_HOST_WINDOW_ENGINE_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "device/security.h"
#include "model/call_text.h"
#include "model/computer_report.h"
#include "model/printer_reader.h"
#include "model/scan.h"

namespace vndiscover::host {

struct Credentials {
    std::string community;                     // UTF-8; empty: the module's own
    std::shared_ptr<const Security> security;  // null: no SNMPv3 user is known
};

// One call of the module: one protocol over one version of IP.
struct SweepStep {
    SweepKind kind = SweepKind::kSnmpV1;
    bool useIPv6 = false;
    Oid oid;  // SNMP: what to ask for
    Credentials credentials;
};

struct AskTarget {
    std::string address;
    SweepKind kind = SweepKind::kSnmpV1;  // kSnmpV3: with the user
    Credentials credentials;
};

// Each call blocks its thread. At most one SNMP sweep, one WS-Discovery sweep and one reading at a
// time.
class Engine {
  public:
    using OnAnswer = std::function<void(const char* address, std::string_view bytes)>;
    virtual ~Engine() = default;

    // Calls onAnswer on the calling thread, for each answer as it is delivered.
    virtual void Sweep(const SweepStep& step, const OnAnswer& onAnswer) = 0;
    // Any thread. Without a sweep a request is forgotten, so it is to be repeated.
    virtual void StopSnmp() = 0;
    virtual void StopWsd() = 0;
    // mayGoOn is asked before each question; a question waits 12 s at most.
    virtual PrinterAnswers Read(const AskTarget& target, std::function<bool()> mayGoOn) = 0;

    // Of this computer; these send nothing.
    virtual AdapterList IPv4() = 0;
    virtual ComputerReport Report() = 0;

    // For each call of the module, after it, on its thread. To be set while no other method runs.
    using OnCall = std::function<void(Call call)>;
    void SetOnCall(OnCall onCall) { onCall_ = std::move(onCall); }

  protected:
    void Tell(Call call) const {
        if (onCall_) onCall_(std::move(call));
    }

  private:
    OnCall onCall_;
};

// What the answers of a step are.
AnswerForm FormOf(const SweepStep& step);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_ENGINE_H
