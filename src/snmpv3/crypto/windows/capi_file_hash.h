#pragma once

#include "snmp/codec/byte_buffer.h"

namespace vndiscover {

// The MD5 of a whole file. Failures are logged and leave digest empty. Nothing in the module
// calls it.
bool CapiHashFile(const char* path, ByteBuffer& digest);

}  // namespace vndiscover
