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

    // Removes what a new search replaces of earlier ones.
    void BeginSearch();
    // What the workers report; see Results. `isComplete`: the sweep ran to its end.
    void BeginSweep(WorkerId worker, const SweepStep& step, const std::string& time);
    void AddAnswer(WorkerId worker, ScanAnswer answer);
    void EndSweep(WorkerId worker, bool isComplete);
    void EndSearch();
    void BeginReading(const std::string& address);
    void AddReading(Results::Read read);
    void EndReadings();  // if none is in progress: forgets dropped ones
    void SetAdapters(const AdapterList& adapters);
    // See LevelLimits.
    void SetLimits(const LevelLimits& limits);
    const LevelLimits& Limits() const { return limits_; }
    // Updates devices and rows. Returns false if there was nothing new.
    bool Refresh();

    void SetScan(Scan scan);
    const Scan& GetScan() const { return scan_; }
    // Whether the scan has answers or splits that no file has.
    bool IsUnsaved() const { return isUnsaved_; }
    void SetSaved(bool isSaved = true) { isUnsaved_ = !isSaved; }
    // The devices that have answered the last search, or a reading since then.
    std::vector<FoundDevice> PresentDevices() const;
    // How many of the listed devices have answered the last search.
    size_t CountFound() const;
    // Adds numeric addresses, each with what the user has typed.
    void AddByHand(const std::vector<std::pair<std::string, std::string>>& addresses,
                   const std::string& time);
    // Treats addresses that the scan's file has as added now, so that they are read.
    void AdoptAdded();

    // The entry of a list of printers. It has a problem if the printer could not be read whole.
    PrinterLine LineOf(const DeviceRow& row) const;
    // How to ask the device with these answers: as it has answered, or otherwise by each community.
    // Returns nothing if it cannot be asked.
    std::optional<AskTarget> TargetOf(const std::vector<size_t>& answers) const;
    AskTarget TargetAt(const std::string& address) const;  // for one of which nothing is known
    // The devices to read for the list: they have answered the last search or were added by hand.
    std::vector<AskTarget> TargetsToRead() const;
    // If the last search was by SNMPv3 too, and nobody has answered that: a device that may say
    // whether it refuses the user. It has answered otherwise or before, or was added by hand.
    std::optional<AskTarget> WhomToAskForARefusal() const;
    bool HasAnsweredSearch(const std::vector<size_t>& answers) const;  // the last one
    // Whether this address has answered or was added since SetScan: a file may name any address.
    bool HasAnsweredHere(const std::vector<size_t>& answers, const std::string& address) const;
    // Returns nothing if the device has not been read here: what was asked for is then unknown.
    std::optional<std::vector<Gap>> GapsOf(const DeviceRow& row) const;
    bool HasUser() const { return credentials_.security != nullptr; }  // of SNMPv3
    std::vector<ProtocolLine> ProtocolsOf(const DeviceRow& row) const;
    // For a new user: whether a device refuses it is not known.
    void ForgetRefusals();
    // Undoes merges by identity or, if there are none, merges of protocols at one address.
    bool CanSplit(const DeviceRow& row) const { return !SplitsOf(row).empty(); }
    void Split(const DeviceRow& row);

  private:
    size_t NumberOf(const Login& login);
    std::vector<std::pair<size_t, size_t>> SplitsOf(const DeviceRow& row) const;
    std::set<Oid> OlderObjects(const Results::Read& read);
    const Reading* LastReadingOf(const FoundDevice& device) const;  // null: none

    const Credentials& credentials_;
    Scan scan_;
    size_t search_ = 0;  // the number of the last search
    bool isSearching_ = false;
    // The sweeps have indexes of these, plus 1. All SNMPv3 users have one entry: only the user of
    // the settings is valid.
    std::vector<std::pair<SweepKind, std::string>> logins_;
    std::set<std::string> added_;  // addresses, since the last SetScan
    DeviceMaker deviceMaker_;
    AdapterList adapters_;
    LevelLimits limits_;
    std::map<WorkerId, size_t> sweeps_;  // indexes of the running ones in the scan
    std::map<std::pair<std::string, SweepKind>, Reading> readings_;  // by address and protocol
    // For each address, when its objects were last read for the details.
    std::map<std::string, std::map<Oid, std::string>> detailTimes_;
    std::multiset<std::string> beingRead_;
    bool isChanged_ = false, isUnsaved_ = false;
    bool areRowsOld_ = false;  // limits or networks have changed, from which rows are made too
};

}  // namespace vndiscover::host
