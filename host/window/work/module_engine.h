#pragma once

#include "device/fleet_readers.h"
#include "window/work/engine.h"

namespace vndiscover::host {

class ModuleEngine : public Engine {
  public:
    bool Sweep(const SweepStep& step, const OnAnswer& onAnswer) override;
    void StopSweeps() override;
    PrinterAnswers Read(const AskTarget& target, std::function<bool()> mayGoOn) override;
    FleetDevice ReadForList(const AskTarget& target, const FleetDevice& job, Reader* reader,
                            std::function<bool()> mayGoOn) override;
    size_t MaxReaders() const override { return kMaxReaders; }
    std::unique_ptr<Reader> MakeReader(const std::vector<Login>& logins) override;
    WalkEnd Walk(const AskTarget& target, const Oid& root, std::function<bool()> mayGoOn,
                 const OnVariable& onVariable) override;
    HostDiagnosis Diagnose(const AskTarget& target, std::function<bool()> mayGoOn) override;
    AdapterList IPv4() override;
    ComputerReport Report() override;

  private:
    // The target, and what `asker` uses, must outlive the returned one, which reports each call.
    Asker Reported(Asker asker, const AskTarget& target, std::function<bool()> mayGoOn,
                   unsigned walk) const;

    unsigned walks_ = 0;
    const OwnedHandle job_ = EndingJob();  // of the readers
};

// The calls for a step or a request, without secrets.
// `probe` is for WS-Discovery only.
Call CallOf(const SweepStep& step, const std::string& probe);
Call CallOf(const AskTarget& target, const Oid& oid);
Call PingOf(const std::string& address);

}  // namespace vndiscover::host
