// One device, asked through the exports for directed requests.
#ifndef VNDISCOVER_HOST_DEVICE_DEVICE_H
#define VNDISCOVER_HOST_DEVICE_DEVICE_H

#include <optional>
#include <string>

#include "device/security.h"
#include "model/answer.h"
#include "model/printer_reader.h"
#include "values/value_text.h"

namespace vndiscover::host {

// Each call blocks until the answer is there, 10 s at most with SNMPv1 and 12 s with SNMPv3. Any
// thread may ask, one request at a time in a process.
class Device {
  public:
    // All text in the ANSI code page, as the exports take it. Empty communities: the module's own.
    Device(std::string host, std::string readCommunity, std::string writeCommunity)
        : host_(std::move(host)),
          readCommunity_(std::move(readCommunity)),
          writeCommunity_(std::move(writeCommunity)) {}
    // From here on Get and GetNext use SNMPv3.
    void Use(Security security) { security_.emplace(std::move(security)); }
    // From here on another device is asked.
    void SetHost(std::string host) { host_ = std::move(host); }
    bool IsV3() const { return security_.has_value(); }

    Answer Get(const Oid& oid) const;
    Answer GetNext(const Oid& oid) const;
    // The answer to a set request; a refusal looks the same. SNMPv1 only.
    Answer Set(const Oid& oid, const SetValue& value) const;
    // The device information text; nothing: no answer or none of type OCTET STRING. SNMPv1 only.
    std::optional<std::string> Information() const;

  private:
    Answer GetV3(const Oid& oid) const;
    Answer GetNextV3(const Oid& oid) const;

    std::string host_, readCommunity_, writeCommunity_;
    std::optional<Security> security_;
};

// For the readers of the model; the device must outlive it.
Asker AskerOf(const Device& device);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_DEVICE_DEVICE_H
