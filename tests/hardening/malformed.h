// Systematically malformed relatives of a good BER datagram.
#pragma once

#include <functional>

#include "helpers/bytes.h"

namespace vndiscover {

using UseDatagram = std::function<void(const Bytes&)>;

// Each of these hands `use` one datagram after the other; good is a whole BER value. An OCTET
// STRING that holds a SEQUENCE, as the security parameters do, is taken apart too.

// Every TLV's length becomes 0, 1, 127, 128, 255, 65,535, 2^31-1, 2^32-1, indefinite, the reserved
// form, one more and one less than there is, each in every form that BER has for it; once with the
// lengths around it as they were, once with them adapted.
void WithEveryLength(const Bytes& good, const UseDatagram& use);

// Every TLV's tag becomes every tag that these protocols know and some that they do not; every two
// TLVs that stand next to each other change places.
void WithSwappedTags(const Bytes& good, const UseDatagram& use);

// Every prefix, the empty one included.
void Truncated(const Bytes& good, const UseDatagram& use);

// A TLV lies within 1 to `deepest` further SEQUENCEs, properly or behind headers of indefinite
// length: every TLV at the first few depths, from then on one TLV per depth in turn.
void Nested(const Bytes& good, int deepest, int step, const UseDatagram& use);

// All of these. Returns how many there were.
int EveryMalformed(const Bytes& good, int nestingStep, const UseDatagram& use);

}  // namespace vndiscover
