// Object identifiers as dotted text and as BER content octets.
#ifndef VNDISCOVER_HOST_VALUES_OID_TEXT_H
#define VNDISCOVER_HOST_VALUES_OID_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vndiscover::host {

// The arcs. Compared with < they come in the order in which a device walks its variables.
using Oid = std::vector<uint32_t>;

// Numeric text, with or without the leading dot. Empty: no OID (a name, an arc over 32 bits, a
// first arc over 2, a second over 39 after 0 or 1, more than 128 arcs).
std::optional<Oid> ParseOid(std::string_view text);

// With a leading dot: ".1.3.6.1".
std::string OidToText(const Oid& oid);

// Content octets to arcs; empty for octets that are no OID (none, the last one cut, an arc over 32
// bits).
std::optional<Oid> DecodeOid(std::string_view octets);

// Arcs (at least two) to content octets, arcs of any size.
std::string EncodeOid(const Oid& oid);

// The module writes every arc from the third on in one byte or two, and the first two in one byte:
// true when that loses bits, so that the device is asked for another variable.
bool GoesOutWrong(const Oid& oid);

// Whether a request can hold it: two arcs or more, 124 content octets at most, as the module writes
// them.
bool FitsRequest(const Oid& oid);

// The OID that a get-next request for `oid` itself names, unless the device has a variable between
// the two. `oid` has three arcs or more.
Oid JustBefore(Oid oid);

// True for `root` itself too.
bool IsWithin(const Oid& oid, const Oid& root);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_VALUES_OID_TEXT_H
