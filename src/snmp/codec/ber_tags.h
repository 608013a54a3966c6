#pragma once

#include <cstdint>

namespace vndiscover {

constexpr uint8_t kTagInteger = 0x02;
constexpr uint8_t kTagOctetString = 0x04;
constexpr uint8_t kTagNull = 0x05;
constexpr uint8_t kTagObjectIdentifier = 0x06;
constexpr uint8_t kTagSequence = 0x30;

constexpr uint8_t kPduGetRequest = 0xA0;
constexpr uint8_t kPduGetNextRequest = 0xA1;
constexpr uint8_t kPduGetResponse = 0xA2;
constexpr uint8_t kPduSetRequest = 0xA3;

}  // namespace vndiscover
