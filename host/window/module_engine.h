// The engine that calls VnDiscover.dll.
#ifndef VNDISCOVER_HOST_WINDOW_MODULE_ENGINE_H
#define VNDISCOVER_HOST_WINDOW_MODULE_ENGINE_H

#include "window/engine.h"

namespace vndiscover::host {

class ModuleEngine : public Engine {
  public:
    void Sweep(const SweepStep& step, const OnAnswer& onAnswer) override;
    void StopSnmp() override;
    void StopWsd() override;
    PrinterAnswers Read(const AskTarget& target, std::function<bool()> mayGoOn) override;
    AdapterList IPv4() override;
    ComputerReport Report() override;
};

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_MODULE_ENGINE_H
