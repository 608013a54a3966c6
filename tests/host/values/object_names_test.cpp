// Names, OIDs and words from RFC 2790 and RFC 3805.
#include "values/object_names.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "values/value_text.h"

namespace vndiscover::host {
namespace {

TEST(ObjectNames, ConvertBothWays) {
    const std::pair<const char*, const char*> rows[] = {
        {"sysDescr.0", ".1.3.6.1.2.1.1.1.0"},
        {"hrPrinterStatus.1", ".1.3.6.1.2.1.25.3.5.1.1.1"},
        {"ifOutOctets", ".1.3.6.1.2.1.2.2.1.16"},
        {"prtMarkerSuppliesLevel.1.12", ".1.3.6.1.2.1.43.11.1.1.9.1.12"},
        {"entPhysicalSerialNum.1", ".1.3.6.1.2.1.47.1.1.1.1.11.1"}};
    for (const auto& [name, oid] : rows) {
        EXPECT_EQ(ParseOid(oid), ParseOidOrName(name));
        EXPECT_EQ(ParseOid(oid), ParseOidOrName(oid));
        EXPECT_EQ(name, NameText(*ParseOid(oid)));
    }
    EXPECT_EQ(ParseOid(".1.3.6.1.2.1.1.5.0"), ParseOidOrName("SYSname.0"));
    for (const char* text :
         {"", ".", "sysDesc.0", "sysDescr.", "sysDescr..0", "sysDescr.x", "sysDescr0"})
        EXPECT_FALSE(ParseOidOrName(text)) << text;
    // Between two objects, before the first and after the last.
    for (const char* oid : {".1.3.6.1.2.1.2.2.1.11.1", ".1.3", ".2.5"})
        EXPECT_EQ(oid, NameText(*ParseOid(oid)));
}

TEST(ObjectNames, AreInOrderAndUnique) {
    for (size_t i = 1; i < kObjectNameCount; ++i) {
        EXPECT_LT(OidOf(kObjectNames[i - 1].name), OidOf(kObjectNames[i].name))
            << kObjectNames[i].name;
    }
}

TEST(NamedValues, AreSpelledOut) {
    const std::tuple<const char*, uint32_t, std::string, const char*> rows[] = {
        {"hrPrinterStatus.1", kInteger, "\x03", "idle(3)"},
        {"hrPrinterStatus.1", kInteger, "\x09", "9"},
        {"prtAlertCode.1.1", kInteger, "\x04\x4D", "markerTonerEmpty(1101)"},
        {"prtMarkerSuppliesLevel.1.1", kInteger, "\xFD", "-3"},
        {"hrPrinterDetectedErrorState.1", kOctetString, "\x0C", "doorOpen, jammed"},
        {"hrPrinterDetectedErrorState.1", kOctetString, "\x40\x03",
         "noPaper, overduePreventMaint, bit 15"},
        {"hrPrinterDetectedErrorState.1", kOctetString, std::string(7, '\0') + "\x01\xFF",
         "bit 63"},
        {"hrPrinterDetectedErrorState.1", kOctetString, {"\0", 1}, "none"},
        {"ifPhysAddress.2", kOctetString, "ABCDEF", "41:42:43:44:45:46"},
        {"sysName.0", kOctetString, "hall", "hall"},
        {"hrPrinterStatus.1", kNull, "", "no value"}};
    for (const auto& [name, type, bytes, shown] : rows)
        EXPECT_EQ(shown, FormatNamedValue(*ParseOidOrName(name), type, bytes)) << name;
}

}  // namespace
}  // namespace vndiscover::host
