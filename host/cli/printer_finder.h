// Finds the printers of this computer's networks and reads them.
#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "cli/printers_writer.h"
#include "device/ask_process.h"
#include "device/security.h"
#include "model/printer/fleet.h"
#include "model/scan/scan.h"

namespace vndiscover::host {

class SweepWatch;

constexpr char kPrinterObject[] = "hrDeviceDescr.1";  // that sweeps ask for

struct Login {
    std::string community;                     // if there is no user
    std::shared_ptr<const Security> security;  // null: SNMPv1
};

// "community 'public'"
std::string NameOf(const Login& login);

// Asks devices in this process, with one of these logins. They must outlive it.
AskNext DirectAsker(const std::vector<Login>& logins);

class PrinterFinder {
  public:
    // `askOption`: see AskProcess.
    PrinterFinder(std::vector<Login> logins, std::wstring askOption)
        : logins_(std::move(logins)), askOption_(std::move(askOption)) {}

    // Sweeps over IPv4, and over IPv6 if `useIPv6`, then reads. Ctrl-C ends it early.
    void Run(bool useIPv6);
    bool IsStopped() const { return isStopped_; }  // by Ctrl-C
    bool WasSent() const { return wasSent_; }      // any request of a sweep

    // What was found, the worst first; once, after Run. Adds to `others` the devices that are no
    // printers.
    std::vector<PrinterLine> Printers(const LevelLimits& limits, size_t& others);

  private:
    void Sweep(size_t login, bool useIPv6, const char* object);
    void ReadAll(const SweepWatch& watch);
    void Work(const AskNext& ask, const std::function<bool()>& mayGoOn);
    void ShowPhase(std::string phase);

    const std::vector<Login> logins_;
    const std::wstring askOption_;
    bool isStopped_ = false, wasSent_ = false;
    Scan scan_;
    std::map<std::string, size_t> devices_;  // of the fleet, by address

    std::mutex mutex_;  // for what follows
    std::condition_variable changed_;
    Fleet fleet_;
    std::string phase_;  // empty: reading
};

}  // namespace vndiscover::host
