// The part of BER (ITU-T X.690) that SNMP requests and answers need.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace check {

using Bytes = std::vector<uint8_t>;

constexpr uint8_t kInteger = 0x02, kOctetString = 0x04, kNull = 0x05, kOid = 0x06, kSequence = 0x30;

Bytes BytesOf(const std::string& text);
Bytes Join(const std::vector<Bytes>& parts);
Bytes Tlv(uint8_t tag, const Bytes& content);
Bytes Integer(int32_t value);
// The content octets of an OID in dotted text, for example ".1.3.6.1.2.1.1.1.0".
Bytes OidOf(const std::string& dotted);

// Reads values in sequence. One that does not fit or has another tag reads as empty, and the reader
// has then failed.
class BerReader {
  public:
    explicit BerReader(const Bytes& bytes) : at_(bytes.data()), end_(bytes.data() + bytes.size()) {}

    bool Failed() const { return failed_; }
    uint8_t NextTag() const { return at_ < end_ ? *at_ : uint8_t{0}; }
    const uint8_t* Position() const { return at_; }
    Bytes Octets(uint8_t tag);
    BerReader Enter(uint8_t tag);
    int32_t Number();
    Bytes Whole();  // the next value with its tag and length

  private:
    BerReader(const uint8_t* at, const uint8_t* end) : at_(at), end_(end) {}
    bool Header(uint8_t tag, size_t& length);

    const uint8_t* at_;
    const uint8_t* end_;
    bool failed_ = false;
};

}  // namespace check
