// Object identifiers as dotted text and as BER content octets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vndiscover::host {

// The arcs. The operator < gives the order in which a walk visits variables.
using Oid = std::vector<uint32_t>;

// Reads numeric text, with or without the leading dot. Empty if it is not an OID: a name, an arc
// over 32 bits, a first arc over 2, a second over 39 after 0 or 1, more than 128 arcs.
std::optional<Oid> ParseOid(std::string_view text);

// With a leading dot: ".1.3.6.1".
std::string OidToText(const Oid& oid);

// Content octets to arcs. Empty: no octets, an incomplete last arc, an arc over 32 bits, more than
// 128 arcs.
std::optional<Oid> DecodeOid(std::string_view octets);

// Arcs, at least two and of any size, to content octets.
std::string EncodeOid(const Oid& oid);

// Whether the module would request another variable, since it encodes an arc in one byte or two.
bool IsMisencoded(const Oid& oid);

// How many content octets the module encodes it in.
size_t RequestOctets(const Oid& oid);

// Whether a request can hold it: two arcs or more, and at most 124 such octets.
bool FitsRequest(const Oid& oid);

// The OID whose get-next request returns `oid`, of three arcs or more, if no variable is between.
Oid JustBefore(Oid oid);

// Whether it is `root`, or below it.
bool IsWithin(const Oid& oid, const Oid& root);

// The first arcs, and those from `start` on; fewer if the OID is shorter.
Oid Head(const Oid& oid, size_t size);
Oid Tail(const Oid& oid, size_t start);
// With further arcs at its end.
Oid Append(Oid oid, const Oid& arcs);

}  // namespace vndiscover::host
