// What the sweeps of all SNMP versions share.
#pragma once

#include <cstdint>
#include <string>

#include "interface/delivery/result_sink.h"
#include "net/adapter_sweep.h"
#include "net/datagram_collector.h"
#include "snmp/device_table.h"
#include "snmp/exchange.h"

namespace vndiscover {

class VxSnmpMgr;

constexpr CollectionLimits kSweepLimits = {kReceiveWaitMs, 60000, false};

// The host's arguments of a sweep.
struct SweepSettings {
    HWND hWnd;  // may be null
    UINT uMsg;
    UINT timeout;
    BYTE useIPv6;
    const wchar_t* resultPath;  // null or "": no result file
};

// How the host learns that the sweep has ended, besides the return of the export.
enum class SweepEnd { kFinalMessage, kReturnAlone };

// One sweep of a manager, which ends with the object:
//
//     RunningSweep sweep(manager, "SNMP::Discover\n", settings, SweepEnd::kFinalMessage);
//     if (sweep) ...
//
// The manager must outlive it.
class RunningSweep {
  public:
    // Logs the line, clears the stop request and stores where results go, unless another sweep of
    // the manager is running.
    RunningSweep(VxSnmpMgr& manager, const char* line, const SweepSettings& settings,
                 SweepEnd end) noexcept;
    ~RunningSweep();
    RunningSweep(const RunningSweep&) = delete;
    RunningSweep& operator=(const RunningSweep&) = delete;

    // False: another sweep is running, and this one does nothing.
    explicit operator bool() const noexcept { return isRunning_; }

    // Makes the socket object anew. Throws std::bad_alloc.
    void RenewSocket();

    VxSnmpMgr& manager;
    const SweepSettings settings;
    // The manager's.
    ResultSink& sink;
    OwnedSocket& sock;
    DeviceTable& devices;
    StopRequest& stop;

  private:
    const SweepEnd end_;
    const bool isRunning_;
};

// The message as a broadcast or multicast to the SNMP port.
SweepRequest SnmpSweepRequest(BYTE useIPv6, const void* message, int32_t length);

// False if the request is too long to be used. Null is not.
bool FitsJsonRequest(const char* jsonRequest);

// The OID to request: `oid`, otherwise the one that jsonRequest names, otherwise the default; null
// and "" name none. False if it has kOidTextSize bytes or more: a truncated OID would request
// another variable.
bool ChooseDiscoveryOid(const char* oid, const char* jsonRequest, std::string& szDisOid);

}  // namespace vndiscover
