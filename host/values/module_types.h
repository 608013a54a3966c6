// Types and sizes of vndiscover.h, without a Windows header; device/device.cpp compares them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vndiscover::host {

// BER tags of SNMP values: VN_TYPE_..., and SNMPv3's exceptions in place of a value (RFC 3416).
enum ValueType : uint32_t {
    kInteger = 2,
    kOctetString = 4,
    kNull = 5,
    kObjectIdentifier = 6,
    kIpAddress = 0x40,
    kCounter32 = 0x41,
    kGauge32 = 0x42,
    kTimeTicks = 0x43,
    kOpaque = 0x44,
    kCounter64 = 0x46,
    kNoSuchObject = 0x80,
    kNoSuchInstance = 0x81,
    kEndOfMibView = 0x82,
};

constexpr size_t kJsonRequestSize = 2048;  // VN_JSON_REQUEST_SIZE: a request has fewer bytes
constexpr size_t kRequestOidMax = 124;     // VN_REQUEST_OID_MAX: content octets of an OID
constexpr size_t kRequestMax = 103;        // bytes of community, OID and value over SNMPv1
constexpr size_t kLongestCommunity = 80;   // leaves room for the longest OID that is asked for
constexpr size_t kAddressSize = 48;        // VN_ADDRESS_SIZE, including the terminating zero
constexpr size_t kValueSize = 4096;        // VN_VALUE_SIZE: the longest value of a result message
constexpr char kDefaultDiscoveryOid[] = ".1.3.6.1.4.1.5963.43.5.1.1.1.1";  // VN_DEFAULT_...

}  // namespace vndiscover::host
