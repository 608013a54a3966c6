// The window's data: turns answers into a scan, devices and rows.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "model/scan/device_merge.h"
#include "model/scan/standing.h"
#include "window/work/results.h"

namespace vndiscover::host {

class DeviceView;
struct DeviceRow;

class Session {
    const std::unique_ptr<DeviceView> view_;

  public:
    // The credentials are those of the settings, and must outlive it.
    explicit Session(const Credentials& credentials);
    ~Session();
    DeviceView& view;

    // A search follows: what it replaces of earlier ones is removed.
    void BeginSearch();
    // What the workers report; see Results. `isComplete`: it ran to its end.
    void BeginSweep(WorkerId worker, const SweepStep& step, const std::string& time);
    void AddAnswer(WorkerId worker, ScanAnswer answer);
    void EndSweep(WorkerId worker, bool isComplete);
    void EndSearch();
    void BeginReading(const std::string& address);
    void AddReading(Results::Read read);
    void EndReadings();  // none is in progress
    void SetAdapters(const AdapterList& adapters);
    // Below which a supply needs attention, or is critical.
    void SetLimits(const LevelLimits& limits);
    const LevelLimits& Limits() const { return limits_; }
    // Updates devices and rows if there are new answers. Returns true if they changed.
    bool Refresh();

    void SetScan(Scan scan);
    const Scan& GetScan() const { return scan_; }
    // Whether the scan has answers, or splits, that are in no file.
    bool IsUnsaved() const { return isUnsaved_; }
    void SetSaved(bool isSaved = true) { isUnsaved_ = !isSaved; }
    // Those that have answered the last search, or when they were read since then.
    std::vector<FoundDevice> PresentDevices() const;
    // How many listed devices have answered the last search: others are older, or were added.
    size_t CountFound() const;
    // Adds numeric addresses, each as what the user has typed.
    void AddByHand(const std::vector<std::pair<std::string, std::string>>& addresses,
                   const std::string& time);
    // Treats the scan's added addresses as added now, so that they are read.
    void AdoptAdded();

    // For a list of printers. One that could not be read whole has a problem.
    PrinterLine LineOf(const DeviceRow& row) const;
    // How to ask a device: as it has answered, or otherwise by each community. Empty if it cannot
    // be asked.
    std::optional<AskTarget> TargetOf(const std::vector<size_t>& answers) const;
    AskTarget TargetAt(const std::string& address) const;  // of which nothing is known
    // How to read those for the list that have answered the last search, or were added by hand.
    std::vector<AskTarget> TargetsToRead() const;
    // If the last search was by SNMPv3 too, and nobody answered that: a device that has answered
    // here otherwise or before, or was added by hand, and can tell whether it refuses the user.
    std::optional<AskTarget> WhomToAskForARefusal() const;
    // Whether this address has answered, or was added, since the last SetScan; a file may hold any.
    bool HasAnsweredSearch(const std::vector<size_t>& answers) const;
    bool HasAnsweredHere(const std::vector<size_t>& answers, const std::string& address) const;
    // Empty: it has not been read here, so nobody knows what else was asked for.
    std::optional<std::vector<Gap>> GapsOf(const DeviceRow& row) const;
    bool HasUser() const { return credentials_.security != nullptr; }  // of SNMPv3
    std::vector<ProtocolLine> ProtocolsOf(const DeviceRow& row) const;
    // The settings have changed: why devices refused the former user holds no longer.
    void ForgetRefusals();
    // Undoes merges by identity; without any, those of protocols that answered from one address.
    bool CanSplit(const DeviceRow& row) const { return !SplitsOf(row).empty(); }
    void Split(const DeviceRow& row);

  private:
    size_t NumberOf(const Login& login);
    std::vector<std::pair<size_t, size_t>> SplitsOf(const DeviceRow& row) const;
    std::set<Oid> OlderObjects(const Results::Read& read);
    const Reading* LastReadingOf(const FoundDevice& device) const;  // null: there was none

    const Credentials& credentials_;
    Scan scan_;
    size_t search_ = 0;  // the number of the last one
    bool isSearching_ = false;
    // Of the sweeps, by their numbers less 1: communities, and one without for all users, of whom
    // the settings have the one that is valid.
    std::vector<std::pair<SweepKind, std::string>> logins_;
    std::set<std::string> added_;  // addresses, since the last SetScan
    DeviceMaker deviceMaker_;
    AdapterList adapters_;
    LevelLimits limits_;
    std::map<WorkerId, size_t> sweeps_;  // indexes of those that are running
    std::map<std::pair<std::string, SweepKind>, Reading> readings_;  // by address and protocol
    // When the objects of an address were read for its details, with all others.
    std::map<std::string, std::map<Oid, std::string>> whole_;
    std::multiset<std::string> beingRead_;
    bool isChanged_ = false, isUnsaved_ = false;
    bool areRowsOld_ = false;  // what they are made of, besides the scan, has changed
};

}  // namespace vndiscover::host
