// Names of standard objects and the words of their values (RFC 1213, 2790, 2863, 3418, 3805, 6933).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "values/oid_text.h"

namespace vndiscover::host {

// The OIDs of the objects that have names, without instances, in order.
const std::vector<Oid>& StandardObjects();
// The object that the OID is, or is an instance of; null if it is not in the table.
const Oid* StandardObjectOf(const Oid& oid);

// The OID, without an instance, of an object that must be in the table.
const Oid& OidOf(std::string_view name);

// A numeric OID, or a name, in any case: "sysDescr.0", "prtMarkerSuppliesLevel.1.2", "sysDescr".
std::optional<Oid> ParseOidOrName(std::string_view text);

// The error message for text that ParseOidOrName rejects.
std::string NotAnOid(std::string_view text);

// "hrPrinterStatus.1"; numeric if the OID is not an object of the table or an instance of one.
std::string NameText(const Oid& oid);

// Whether the object's octets are never text: a hardware address, or bits that have words.
bool IsBinary(const Oid& oid);

// The word for an enumeration's number, "idle"; empty if there is none.
std::string WordOf(std::string_view name, int64_t number);
// The words of those of the first 64 bits that are set. A bit without a word is "bit 20".
std::vector<std::string> WordsOf(std::string_view name, std::string_view bits);

// One line for a person: "idle(3)", "doorOpen, jammed", "02:00:5E:10:00:01"; otherwise FormatValue.
std::string FormatNamedValue(const Oid& oid, uint32_t type, std::string_view bytes);

}  // namespace vndiscover::host
