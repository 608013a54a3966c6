// Why a device refuses an SNMPv3 request: instead of an answer it sends a report, whose one
// variable is the counter of that reason.
#ifndef VNDISCOVER_HOST_MODEL_REFUSAL_H
#define VNDISCOVER_HOST_MODEL_REFUSAL_H

#include <cstdint>

#include "values/oid_text.h"

namespace vndiscover::host {

// `asked`: the OID of the request; `answered`, `type`: of the answer's variable. Null: no report.
// Whoever asks for these counters themselves, or for what precedes them, gets them as variables.
const char* RefusalReason(const Oid& asked, const Oid& answered, uint32_t type);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_REFUSAL_H
