// Checks the portable copy of the public header's types and sizes.
#include "values/module_types.h"

#include <vndiscover.h>

#include <string_view>

namespace vndiscover::host {

static_assert(kInteger == VN_TYPE_INTEGER && kOctetString == VN_TYPE_OCTET_STRING);
static_assert(kNull == VN_TYPE_NULL && kObjectIdentifier == VN_TYPE_OBJECT_IDENTIFIER);
static_assert(kIpAddress == VN_TYPE_IP_ADDRESS && kCounter32 == VN_TYPE_COUNTER32);
static_assert(kGauge32 == VN_TYPE_GAUGE32 && kTimeTicks == VN_TYPE_TIME_TICKS);
static_assert(kOpaque == VN_TYPE_OPAQUE && kCounter64 == VN_TYPE_COUNTER64);
static_assert(kJsonRequestSize == VN_JSON_REQUEST_SIZE && kRequestOidMax == VN_REQUEST_OID_MAX);
static_assert(kAddressSize == VN_ADDRESS_SIZE && kValueSize == VN_VALUE_SIZE);
static_assert(std::string_view(kDefaultDiscoveryOid) == VN_DEFAULT_DISCOVERY_OID);

}  // namespace vndiscover::host
