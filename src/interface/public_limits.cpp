// Checks that the limits in the public header are those of the code.
#include "interface/delivery/json_request.h"
#include "interface/delivery/result_sink.h"
#include "snmp/codec/asn.h"
#include "snmp/codec/response_record.h"
#include "snmp/codec/snmp_message.h"
#include "snmpv3/codec/vx_snmpv3.h"
#include "vndiscover.h"
#include "wsd/vx_soap_mgr.h"

namespace vndiscover {

static_assert(sizeof(VnResponseRecord) == kResponseRecordSize);
static_assert(VN_ADDRESS_SIZE == kAddressSize && VN_ADDRESS_SIZE == sizeof(SoapResult::address));
static_assert(VN_VALUE_SIZE == kValueSize);
static_assert(VN_OID_SIZE == kNameSize);
static_assert(VN_REQUEST_OID_MAX == kMaxNameContent);
static_assert(VN_COMMUNITY_MAX == kMaxCommunity);
static_assert(VN_USER_NAME_MAX == kMaxUserName);
static_assert(VN_TEXT_MAX + 1 == kOidTextSize && VN_TEXT_MAX + 1 == kPathSize);
static_assert(VN_JSON_REQUEST_SIZE == kJsonRequestSize);
static_assert(VN_SOAP_REPLY_SIZE == sizeof(SoapResult::reply));
static_assert(VN_SOAP_PROBE_MAX == kMaxProbe);
static_assert(VN_TYPE_INTEGER == kTagInteger && VN_TYPE_OCTET_STRING == kTagOctetString &&
              VN_TYPE_NULL == kTagNull && VN_TYPE_OBJECT_IDENTIFIER == kTagObjectIdentifier);

}  // namespace vndiscover
