#include "model/asking/refusal.h"

#include <algorithm>
#include <iterator>

#include "values/module_types.h"

namespace vndiscover::host {
namespace {

const Oid kSnmpModules = {1, 3, 6, 1, 6, 3};

struct Reason {
    Oid counter;  // below snmpModules
    const char* text;
};
// RFC 3414 (usmStats), RFC 3412 (snmpMPDStats), RFC 3413 (snmpUnavailableContexts,
// snmpUnknownContexts).
const Reason kReasons[] = {
    {{15, 1, 1, 1, 0}, "the device does not support this security level"},
    {{15, 1, 1, 2, 0}, "the request is outside the device's time window"},
    {{15, 1, 1, 3, 0}, "the device does not know this user"},
    {{15, 1, 1, 4, 0}, "the device does not know its own engine ID"},
    {{15, 1, 1, 5, 0}, "wrong authentication password or protocol"},
    {{15, 1, 1, 6, 0}, "the device cannot decrypt it: wrong privacy password or protocol"},
    {{11, 2, 1, 1, 0}, "the device does not support the user-based security model"},
    {{11, 2, 1, 2, 0}, "the device considers the message invalid"},
    {{11, 2, 1, 3, 0},
     "the device requires a context engine ID, which these requests do not carry"},
    {{12, 1, 4, 0}, "the device's context is not available"},
    {{12, 1, 5, 0}, "the device does not know the default context"},
};

}  // namespace

const char* RefusalReason(const Oid& asked, const Oid& answered, uint32_t type) {
    if (type != kCounter32 || IsWithin(asked, kSnmpModules) || !IsWithin(answered, kSnmpModules))
        return nullptr;
    const Oid counter(answered.begin() + static_cast<ptrdiff_t>(kSnmpModules.size()),
                      answered.end());
    const auto* found = std::find_if(std::begin(kReasons), std::end(kReasons),
                                     [&](const Reason& known) { return known.counter == counter; });
    return found == std::end(kReasons) ? nullptr : found->text;
}

}  // namespace vndiscover::host
