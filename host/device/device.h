// One device, accessed through the exports for directed requests.
#pragma once

#include <windows.h>
#include <memory>
#include <optional>
#include <string>

#include "device/security.h"
#include "model/asking/answer.h"
#include "values/value_text.h"

namespace vndiscover::host {

struct Login {
    std::string community;                     // UTF-8; empty: the module's default
    std::shared_ptr<const Security> security;  // null: SNMPv1, by the community

    bool operator==(const Login& other) const {
        return community == other.community && security == other.security;
    }
};

// The community that is sent: the given one, or if that is empty, the module's default.
std::string CommunityOf(const std::string& given);

// Each call blocks, at most 10 s with SNMPv1 and 12 s with SNMPv3; one at a time in a process.
class Device {
  public:
    // `host`: UTF-8.
    Device(const Login& login, const std::string& host);
    bool IsV3() const { return security_ != nullptr; }

    // Finds the adapter of a link-local address without a zone, which takes seconds. Without this
    // call, the first request does it.
    void ChooseAdapter() const { Host(); }
    // Whether it answers an ICMP echo request. The module pings names over IPv6.
    bool Ping() const;
    Answer Get(const Oid& oid) const;
    Answer GetNext(const Oid& oid) const;
    // A refusal cannot be distinguished from success. SNMPv1 only, by the community, in UTF-8.
    Answer Set(const Oid& oid, const SetValue& value, const std::string& writeCommunity) const;
    // The device information text. Empty if no answer of type OCTET STRING came. SNMPv1 only.
    std::optional<std::string> Information() const;

  private:
    const char* Host() const;
    bool IsThere(bool isPing) const;
    bool CanSend(const Oid& oid) const;
    Answer GetV3(const Oid& oid) const;
    Answer GetNextV1(const Oid& oid) const;
    Answer GetNextV3(const Oid& oid) const;

    mutable std::string host_;      // with its zone, if it was found
    mutable bool isZoned_ = false;  // the zone was looked for
    std::string community_;         // both in the ANSI code page
    std::shared_ptr<const Security> security_;
};

// For ReadPrinter and the like; the device must outlive it.
Asker AskerOf(const Device& device);

// The calls of the module: the arguments that it reads, and those that it does not.

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
// pump messages. Returns false if nothing was sent.
bool RunSweep(HWND window, UINT message, const SnmpSweep& sweep);
// The same for WS-Discovery. Returns false if nothing was sent to a network.
bool RunProbe(HWND window, UINT message, unsigned timeoutMs, const std::string& probe);

}  // namespace vndiscover::host
