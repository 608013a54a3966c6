#pragma once

#include <map>
#include <vector>

#include "model/scan/found_device.h"
#include "model/scan/scan.h"

namespace vndiscover::host {

// All answers that one sweep received from one address are of one device. Devices are then merged
// by serial number, MAC address, WS-Discovery endpoint and address, in this order, unless a
// stronger key distinguishes them (see Identity) or a person did (Scan::splits). The same scan
// always gives the same devices, in the order of their first answers.
std::vector<FoundDevice> MakeDevices(const Scan& scan);

// The same, several times a second: only devices with new answers are described again.
class DeviceMaker {
  public:
    std::vector<FoundDevice> Make(const Scan& scan);

  private:
    std::map<std::vector<size_t>, FoundDevice> described_;  // by their answers
};

}  // namespace vndiscover::host
