// One device, accessed through the exports for directed requests.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "device/security.h"
#include "model/asking/answer.h"
#include "model/asking/asker.h"
#include "values/value_text.h"

namespace vndiscover::host {

struct Login {
    std::string community;                     // UTF-8; empty: the module's default
    std::shared_ptr<const Security> security;  // null: SNMPv1, by the community

    bool operator==(const Login& other) const {
        return community == other.community && security == other.security;
    }
};

// Each call blocks, at most 10 s with SNMPv1 and 12 s with SNMPv3; one at a time in a process.
class Device {
  public:
    // Text is in the ANSI code page. Empty communities mean the module's default.
    Device(std::string host, std::string readCommunity, std::string writeCommunity)
        : host_(std::move(host)),
          readCommunity_(std::move(readCommunity)),
          writeCommunity_(std::move(writeCommunity)) {}
    // From now on Get and GetNext use SNMPv3.
    void Use(std::shared_ptr<const Security> security) { security_ = std::move(security); }
    void SetHost(std::string host) {
        host_ = std::move(host);
        isZoned_ = false;
    }
    bool IsV3() const { return security_ != nullptr; }

    // Of a link-local address without a zone, in seconds; otherwise the first request does.
    void ChooseAdapter() const { Host(); }
    // Whether it answers an ICMP echo request. Names are pinged over IPv6.
    bool Ping() const;
    Answer Get(const Oid& oid) const;
    Answer GetNext(const Oid& oid) const;
    // A refusal cannot be distinguished from success. SNMPv1 only.
    Answer Set(const Oid& oid, const SetValue& value) const;
    // The device information text; empty without an answer of type OCTET STRING. SNMPv1 only.
    std::optional<std::string> Information() const;

  private:
    const char* Host() const;
    bool CanSend(const Oid& oid) const;
    Answer GetV3(const Oid& oid) const;
    Answer GetNextV3(const Oid& oid) const;

    mutable std::string host_;      // with its zone if isZoned_
    mutable bool isZoned_ = false;  // or that was tried
    std::string readCommunity_, writeCommunity_;
    std::shared_ptr<const Security> security_;
};

Device DeviceOf(const Login& login, const std::string& address);

// For ReadPrinter and the like; the device must outlive it.
Asker AskerOf(const Device& device);

}  // namespace vndiscover::host
