// The window's data: turns answers into a scan, devices and rows.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/scan/device_merge.h"
#include "model/scan/device_view.h"
#include "model/scan/protocols.h"
#include "window/work/results.h"

namespace vndiscover::host {

class Session {
  public:
    DeviceView view;

    // What the workers report; see Results.
    void BeginSweep(WorkerId worker, const SweepStep& step, const std::string& time);
    void AddAnswer(WorkerId worker, ScanAnswer answer);
    void EndSweep(WorkerId worker) { isSweeping_[static_cast<size_t>(worker)] = false; }
    void AddReading(Results::Read read);
    void SetAdapters(const AdapterList& adapters);
    // Updates devices and rows if there are new answers. Returns true if they changed.
    bool Refresh();

    void Clear() { SetScan({}); }
    void SetScan(Scan scan);
    const Scan& GetScan() const { return scan_; }
    // Whether the scan has answers, or splits, that are in no file.
    bool IsUnsaved() const { return isUnsaved_; }
    void SetSaved() { isUnsaved_ = false; }
    const std::vector<FoundDevice>& Devices() const { return devices_; }

    // Null if it is no device's row.
    const FoundDevice* DeviceOf(const DeviceRow& row) const;
    // How to ask a device: the address and protocol by which it answered. Empty if it cannot be
    // asked.
    std::optional<AskTarget> TargetOf(const DeviceRow& row) const;
    bool WasAsked(const DeviceRow& row) const;
    // Whether this address has answered since the last SetScan. A scan from a file may hold any
    // address.
    bool HasAnsweredHere(const DeviceRow& row, const std::string& address) const;
    // What is missing from the last reading of a device, and why.
    std::vector<Gap> GapsOf(const DeviceRow& row) const;
    std::vector<ProtocolLine> ProtocolsOf(const DeviceRow& row) const;
    // Undoes the merges of a device by its identity, or if there are none, those of protocols that
    // answered from one address.
    bool CanSplit(const DeviceRow& row) const { return !SplitsOf(row).empty(); }
    void Split(const DeviceRow& row);

  private:
    std::vector<std::pair<size_t, size_t>> SplitsOf(const DeviceRow& row) const;
    std::vector<Reading> ReadingsOf(const DeviceRow& row) const;

    Scan scan_;
    size_t givenAnswers_ = 0;  // the first ones, by SetScan
    std::vector<FoundDevice> devices_;
    DeviceMaker deviceMaker_;
    RowMaker rowMaker_;
    AdapterList adapters_;
    std::array<size_t, kWorkerCount> sweeps_{};  // indexes of the last ones
    std::array<bool, kWorkerCount> isSweeping_{};
    std::map<std::string, std::vector<Reading>> readings_;  // by address, one for each protocol
    bool isChanged_ = false, isUnsaved_ = false;
};

}  // namespace vndiscover::host
