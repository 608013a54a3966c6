// The SNMPv3 reader on any datagram. The first byte chooses the protocols that the reader expects.
#include <cstdlib>

#include "snmp/codec/asn_decode.h"

#include "fuzz/v3_fixture.h"

using namespace vndiscover;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    ByteBuffer datagram;
    datagram.Assign(data + 1, static_cast<int32_t>(size - 1));
    fuzz::Read(data[0] % fuzz::kAuthCodes, data[0] / fuzz::kAuthCodes % fuzz::kPrivCodes, datagram);
    return 0;
}
