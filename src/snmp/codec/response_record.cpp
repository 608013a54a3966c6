#include "snmp/codec/response_record.h"

#include <cstring>

namespace vndiscover {

void InitResponseRecord(ResponseRecord& record) {
    FreeResponseRecord(record);
    record.valueTag = record.valueLength = record.nameLength = 0;
    std::memset(record.address, 0, sizeof record.address);
    std::memset(record.value, 0, sizeof record.value);
    std::memset(record.name, 0, sizeof record.name);
    record.engineBoots = record.engineTime = 0;
    record.msgMaxSize = 0;
}

void FreeResponseRecord(ResponseRecord& record) { record.engineId.Clear(); }

}  // namespace vndiscover
