// The engine that calls VnDiscover.dll.
#pragma once

#include "device/device.h"
#include "window/work/engine.h"

namespace vndiscover::host {

class ModuleEngine : public Engine {
  public:
    void Sweep(const SweepStep& step, const OnAnswer& onAnswer) override;
    void StopSnmp() override;
    void StopWsd() override;
    PrinterAnswers Read(const AskTarget& target, std::function<bool()> mayGoOn) override;
    WalkEnd Walk(const AskTarget& target, const Oid& root, std::function<bool()> mayGoOn,
                 const OnVariable& onVariable) override;
    HostDiagnosis Diagnose(const AskTarget& target, std::function<bool()> mayGoOn) override;
    AdapterList IPv4() override;
    ComputerReport Report() override;

  private:
    // Both must outlive the asker, which reports each call.
    Asker AskerFor(const Device& device, const AskTarget& target, std::function<bool()> mayGoOn,
                   unsigned walk) const;

    unsigned walks_ = 0;
};

}  // namespace vndiscover::host
