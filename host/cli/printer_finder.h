// Finds the printers of this computer's networks and reads them.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "device/ask_process.h"
#include "model/printer/fleet.h"
#include "model/printer/report.h"
#include "model/scan/scan.h"

namespace vndiscover::host {

class SweepWatch;

constexpr char kPrinterObject[] = "hrDeviceDescr.1";  // that sweeps ask for

// "community 'public'"
std::string NameOf(const Login& login);

class PrinterFinder {
  public:
    explicit PrinterFinder(std::vector<Login> logins) : logins_(std::move(logins)) {}

    // Sweeps over IPv4, and over IPv6 if `useIPv6`, then reads. Ctrl-C ends it early.
    void Run(bool useIPv6);
    bool IsStopped() const { return isStopped_; }  // by Ctrl-C
    bool WasSent() const { return wasSent_; }      // any request of a sweep
    // SNMPv3 users that a device refuses: "the SNMPv3 user 'x': wrong authentication password".
    const std::vector<std::string>& Refusals() const { return refusals_; }

    // What was found, the worst first; once, after Run. Adds to `others` what is no printer.
    std::vector<PrinterLine> Printers(const LevelLimits& limits, size_t& others);

  private:
    void Sweep(size_t login, bool useIPv6, const char* object);
    FleetDevice Read(FleetDevice job, Reader& reader, const std::function<bool()>& maySend) const;
    void ReadAll(const SweepWatch& watch);
    void FindRefusals(const SweepWatch& watch);
    void ShowPhase(std::string phase);

    const std::vector<Login> logins_;
    bool isStopped_ = false, wasSent_ = false;
    std::set<size_t> answered_;  // logins that any device answered
    std::vector<std::string> refusals_;
    Scan scan_;
    std::map<std::string, size_t> devices_;        // of the fleet, by address
    std::vector<std::vector<size_t>> answeredBy_;  // of each of these, the logins, in their order

    std::mutex mutex_;  // for what follows
    Fleet fleet_;
    std::string phase_;  // empty: reading
};

}  // namespace vndiscover::host
