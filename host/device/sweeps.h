// The calls of the module: the arguments that it reads, and those that it does not.
#pragma once

#include <windows.h>

#include <string>

#include "device/device.h"

namespace vndiscover::host {

// The module accepts these without using them. Calls that are shown to people repeat them.
constexpr unsigned kUnusedSweepTimeoutMs = 5000;
constexpr unsigned kUnusedTimeoutMs = 2000;  // of a directed request
constexpr unsigned kUnusedRetries = 5;

constexpr unsigned kWsdSilenceMs = 3000;  // after which a WS-Discovery sweep leaves an address
constexpr unsigned kPingTimeoutMs = 2000;

struct SnmpSweep {
    bool useIPv6 = false;
    std::wstring oid;                    // SNMPv1 only; empty: the module's default
    std::wstring request;                // JSON; empty: the OID alone is asked for
    std::wstring community;              // empty: the module's default
    std::wstring resultPath;             // SNMPv1 only; empty: no file
    const Security* security = nullptr;  // null: SNMPv1
};

// For one OID.
SnmpSweep SweepFor(const Login& login, const Oid& oid, bool useIPv6);

// A sweep of any kind that has sent something waits longer, 2 s at least, unless it is stopped.
constexpr unsigned kLeastSweepMs = 1000;

// Blocks until the sweep has ended. `window` must be of the calling thread, or another thread must
// pump messages. False if nothing was sent.
bool RunSweep(HWND window, UINT message, const SnmpSweep& sweep);

}  // namespace vndiscover::host
