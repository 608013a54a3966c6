// The SNMPv1 response parser on any datagram: what it stores stays within the record's fields.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "snmp/codec/snmp_message.h"

using namespace vndiscover;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto record = std::make_unique<ResponseRecord>();
    InitResponseRecord(*record);
    const int32_t count = ParseSnmpResponse(*record, data, size, "fe80::1");
    if (record->nameLength > kNameSize || record->valueLength > 255) std::abort();
    if (count > 0 && record->value[record->valueLength] != 0) std::abort();
    if (std::strcmp(record->address, "fe80::1") != 0) std::abort();

    // A datagram reads like the same one at the start of a zeroed receive buffer.
    std::vector<uint8_t> buffer(2048 > size ? 2048 : size);
    if (size != 0) std::memcpy(buffer.data(), data, size);
    const auto again = std::make_unique<ResponseRecord>();
    InitResponseRecord(*again);
    const int32_t countAgain = ParseSnmpResponse(*again, buffer.data(), buffer.size(), "fe80::1");
    if (count != countAgain || record->valueTag != again->valueTag ||
        std::memcmp(record->value, again->value, sizeof record->value) != 0 ||
        std::memcmp(record->name, again->name, sizeof record->name) != 0) {
        std::abort();
    }
    return 0;
}
