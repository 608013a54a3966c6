// From answers to devices.
#ifndef VNDISCOVER_HOST_MODEL_DEVICE_MERGE_H
#define VNDISCOVER_HOST_MODEL_DEVICE_MERGE_H

#include <vector>

#include "model/found_device.h"
#include "model/scan.h"

namespace vndiscover::host {

// What one sweep heard from one address is one device. Those are merged by serial number, then by
// MAC address, by WS-Discovery endpoint and by address, unless a stronger key tells them apart (see
// Identity) or a person did (Scan::splits). The same scan always gives the same devices, in the
// order of their first answers. Call it as often as the devices are to be shown.
std::vector<FoundDevice> MakeDevices(const Scan& scan);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_DEVICE_MERGE_H
