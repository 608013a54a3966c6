// Why a device refuses an SNMPv3 request: instead of a response it sends a report, whose one
// variable is the counter for that reason.
#pragma once

#include <cstdint>

#include "values/oid_text.h"

namespace vndiscover::host {

// `asked` is the OID of the request, `answered` and `type` are of the answer's variable. Null if
// the answer is not a report: these counters are ordinary variables if they were requested, or
// follow what was.
const char* RefusalReason(const Oid& asked, const Oid& answered, uint32_t type);

}  // namespace vndiscover::host
