// From answers to devices.
#ifndef VNDISCOVER_HOST_MODEL_DEVICE_MERGE_H
#define VNDISCOVER_HOST_MODEL_DEVICE_MERGE_H

#include <map>
#include <vector>

#include "model/found_device.h"
#include "model/scan.h"

namespace vndiscover::host {

// What one sweep heard from one address is one device. Those are merged by serial number, then by
// MAC address, by WS-Discovery endpoint and by address, unless a stronger key tells them apart (see
// Identity) or a person did (Scan::splits). The same scan always gives the same devices, in the
// order of their first answers.
std::vector<FoundDevice> MakeDevices(const Scan& scan);

// The same for one scan that grows: only devices with new answers are described anew, so it may be
// called several times a second.
class DeviceMaker {
  public:
    std::vector<FoundDevice> Make(const Scan& scan);

  private:
    std::map<std::vector<size_t>, FoundDevice> described_;  // by their answers
};

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_DEVICE_MERGE_H
