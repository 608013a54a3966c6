// Rows of a sweep, and the JSON request for it; variables as commands print them. Rows must suit a
// terminal, a CSV reader and a JSON parser, whatever devices answer.
#include "model/scan/device_writer.h"

#include <gmock/gmock.h>

#include "model/asking/json_request.h"
#include "values/module_types.h"

namespace vndiscover::host {
namespace {

using Rows = std::vector<std::pair<const char*, std::string>>;

std::string Written(Format format, const SweepValues& values, const Rows& rows,
                    bool isIPv6 = false) {
    DeviceWriter writer(format, isIPv6, values);
    std::string text;
    for (const auto& [address, value] : rows) text += writer.Row(address, value);
    return text + writer.End();
}

// Among the values are one that ends in a zero byte, and a hardware address of Latin-1 letters
// only.
const Rows kValues = {{"10.77.1.22", {"LaserPro\0", 9}},
                      {"192.168.100.200", "B\xFCro \"1\",\r\n2"},
                      {"10.77.1.23", ""},
                      {"10.77.1.24", "\x1B[2J\"a\""},
                      {"10.77.1.25", "\xA0\xB1\xC2\xD3\xE4\xF5"}};
constexpr char kDocument[] =
    "{\n\t\"DiscoverOID\":\t\".1.3.6\",\n\t\"GET\":\t{\n\t\t\".1.3.6.1\":\t\"LaserPro\",\n"
    "\t\t\".1.3.6.2\":\t\"\xC2\x9B[2J \\u001b\"\n\t}\n}";

TEST(DeviceRows, AreValidForTheirReaders) {
    EXPECT_EQ(
        "ADDRESS          VALUE\n10.77.1.22       LaserPro\n"
        "192.168.100.200  B\xC3\xBCro \"1\", 2\n"
        "10.77.1.23       (no value, or too long for SNMPv1)\n10.77.1.24       0x1B5B324A226122\n"
        "10.77.1.25       0xA0B1C2D3E4F5\n",
        Written(Format::kText, {}, kValues));
    EXPECT_EQ(
        "\"10.77.1.22\",\"LaserPro\"\n\"192.168.100.200\",\"B\xC3\xBCro \"\"1\"\", 2\"\n"
        "\"10.77.1.23\",\"\"\n\"10.77.1.24\",\"0x1B5B324A226122\"\n"
        "\"10.77.1.25\",\"0xA0B1C2D3E4F5\"\n",
        Written(Format::kCsv, {}, kValues));
    EXPECT_EQ(
        "[\n  {\"address\":\"10.77.1.22\",\"value\":\"LaserPro\"},\n"
        "  {\"address\":\"192.168.100.200\",\"value\":\"B\xC3\xBCro \\\"1\\\",\\r\\n2\"},\n"
        "  {\"address\":\"10.77.1.23\",\"value\":\"\","
        "\"text\":\"no value, or too long for SNMPv1\"},\n"
        "  {\"address\":\"10.77.1.24\",\"value\":\"0x1B5B324A226122\"},\n"
        "  {\"address\":\"10.77.1.25\",\"value\":\"0xA0B1C2D3E4F5\"}\n]\n",
        Written(Format::kJson, {}, kValues));
    EXPECT_EQ("[]\n", Written(Format::kJson, {}, {}));
}

// A document that was cut, or has no answers, is shown unchanged.
TEST(DeviceRows, HoldTheAnswersOfADocument) {
    const Rows rows = {{"fe80::1:22", kDocument},
                       {"fe80::1:22", "{\n\t\"GET\":\t\""},
                       {"fe80::1:22", "{\"a\": 1}"}};
    EXPECT_EQ(
        "ADDRESS                    VALUE\n"
        "fe80::1:22                 .1.3.6.1                       LaserPro\n"
        "                           .1.3.6.2                       0xC29B5B324A201B\n"
        "fe80::1:22                 { \"GET\": \"\n"
        "fe80::1:22                 {\"a\":1}\n",
        Written(Format::kText, {ValueKind::kDocument}, rows, true));
    SweepValues values = {ValueKind::kDocument};
    for (const char* words : {"no value, or too long for SNMPv1",
                              "no value, or neither an INTEGER nor a text of up to 126 bytes"}) {
        EXPECT_THAT(Written(Format::kText, values, {{"10.0.0.1", "{\"GET\": {\".1.3\": \"\"}}"}}),
                    testing::HasSubstr(words));
        values.isV3 = true;
    }
    EXPECT_EQ("\"10.0.0.1\",\"{\"\"GET\"\":{\"\".1.3\"\":\"\"x\\ny\"\"}}\"\n",
              Written(Format::kCsv, {ValueKind::kDocument},
                      {{"10.0.0.1", "{\"GET\": {\".1.3\": \"x\\ny\"}}"}}));
    EXPECT_EQ(
        "[\n  {\"address\":\"fe80::1:22\",\"value\":{\"DiscoverOID\":\".1.3.6\",\"GET\":"
        "{\".1.3.6.1\":\"LaserPro\",\".1.3.6.2\":\"\xEF\xBF\xBD[2J \\u001b\"}}},\n"
        "  {\"address\":\"fe80::1:22\",\"value\":\"{\\n\\t\\\"GET\\\":\\t\\\"\"},\n"
        "  {\"address\":\"fe80::1:22\",\"value\":{\"a\":1}}\n]\n",
        Written(Format::kJson, {ValueKind::kDocument}, rows));
    EXPECT_EQ("\"10.0.0.1\",\"LaserPro\"\n",
              Written(Format::kCsv, {ValueKind::kAnswer}, {{"10.0.0.1", kDocument}}));
}

// "@" is no paper; what has no answer in a document is the caller's.
TEST(DeviceRows, ShowOctetsThatLookLikeTextInHex) {
    SweepValues values = {ValueKind::kRaw, {1, 3, 6, 1, 2, 1, 25, 3, 5, 1, 2, 1}};
    const std::string octets = R"({"value":"40","encoding":"hex","text":"noPaper"})";
    EXPECT_EQ("[\n  {\"address\":\"10.0.0.1\"," + octets.substr(1) + "\n]\n",
              Written(Format::kJson, values, {{"10.0.0.1", "@"}}));
    values.kind = ValueKind::kDocument;
    const auto document = [](const std::string& errors) {
        return R"({"GET":{".1.3.6.1.2.1.25.3.5.1.2.1":)" + errors +
               R"(,".1.3.6.1.2.1.2.2.1.6.1":"none"}})";
    };
    values.request = document("\"\"");
    EXPECT_EQ("[\n  {\"address\":\"10.0.0.1\",\"value\":" + document(octets) + "}\n]\n",
              Written(Format::kJson, values, {{"10.0.0.1", document("\"@\"")}}));
}

TEST(JsonRequests, AreCompactedAndLimited) {
    std::string problem;
    EXPECT_EQ(RequestFor(".1.3.6"), PrepareRequest(RequestFor(".1.3.6"), problem));
    EXPECT_EQ("{\"GET\":{\".1.3 x\":\"\"}}",
              PrepareRequest("\xEF\xBB\xBF{ \"GET\": {\r\n\".1.3 x\": \"\" } }\n", problem));
    const auto named = PrepareRequest(
        R"({"DiscoverOID": "sysObjectID.0", "GET": {"sysname.0": "", "none": "", ".1.3.6": "x"}})",
        problem);
    EXPECT_EQ(R"({"DiscoverOID":".1.3.6.1.2.1.1.2.0",)"
              R"("GET":{".1.3.6.1.2.1.1.5.0":"","none":"",".1.3.6":"x"}})",
              named);
    EXPECT_EQ(
        (std::vector<std::string>{".1.3.6.1.2.1.1.2.0", ".1.3.6.1.2.1.1.5.0", "none", ".1.3.6"}),
        OidTextsOf(ParseDocument(*named).get()));
    EXPECT_EQ(std::vector<std::string>{kDefaultDiscoveryOid},
              OidTextsOf(ParseDocument("{}").get()));
    for (const char* text : {"", "[]", "\"GET\"", "{\"GET\": {", "{'GET': 1}"}) {
        EXPECT_FALSE(PrepareRequest(text, problem)) << text;
    }
    const auto sized = [](size_t size) {
        return "{\"a\":\"" + std::string(size - 8, 'x') + "\"}" + std::string(500, ' ');
    };
    EXPECT_TRUE(PrepareRequest(sized(2047), problem));
    EXPECT_FALSE(PrepareRequest(sized(2048), problem));
    EXPECT_NE(std::string::npos, problem.find("2048 bytes"));
}

TEST(VariableRows, AreLinesOrJsonElements) {
    VariableWriter text(false);
    EXPECT_EQ(".1.3.6 = INTEGER: 5\n", text.Row(AnsweredWith({1, 3, 6}, kInteger, "\x05")));
    EXPECT_EQ(".1.3.6 = OCTET STRING: \"\"\n", text.Row(AnsweredWith({1, 3, 6}, kOctetString, "")));
    EXPECT_EQ(".1.3.6 = no value\n", text.Row(AnsweredWith({1, 3, 6}, kNull, "")));
    EXPECT_EQ("", text.Row(Answer()));
    const std::string cut(128, 'x');
    EXPECT_EQ(".1.3.6 = OCTET STRING: " + cut + " [the first 128 of 175 bytes]\n",
              text.Row(AnsweredWith({1, 3, 6}, kOctetString, "\xAF" + cut)));
    VariableWriter names(false, true);
    const Oid status = {1, 3, 6, 1, 2, 1, 25, 3, 5, 1, 1, 1};
    EXPECT_EQ("hrPrinterStatus.1 = INTEGER: idle(3)\n",
              names.Row(AnsweredWith(status, kInteger, "\x03")));
    EXPECT_EQ(
        "[\n  {\"oid\":\".1.3.6.1.2.1.25.3.5.1.1.1\",\"name\":\"hrPrinterStatus.1\","
        "\"type\":\"INTEGER\",\"value\":3,\"text\":\"idle(3)\"}",
        VariableWriter(true, true).Row(AnsweredWith(status, kInteger, "\x03")));
    const Oid errors = {1, 3, 6, 1, 2, 1, 25, 3, 5, 1, 2, 1};
    EXPECT_EQ(
        "[\n  {\"oid\":\".1.3.6.1.2.1.25.3.5.1.2.1\",\"type\":\"OCTET STRING\","
        "\"value\":\"40\",\"encoding\":\"hex\",\"text\":\"noPaper\"}",
        VariableWriter(true).Row(AnsweredWith(errors, kOctetString, "@")));
    VariableWriter json(true);
    std::string document;
    for (const Answer& answer :
         {AnsweredWith({1, 3, 6}, kCounter64, "\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"),
          AnsweredWith({1, 3, 7}, kOctetString, "a\"\x7F"),
          AnsweredWith({1, 3, 8}, kOctetString, "a\"\nb"),
          AnsweredWith({1, 3, 9}, kNoSuchInstance, ""), Answer()}) {
        document += json.Row(answer);
    }
    EXPECT_EQ(R"([
  {"oid":".1.3.6","type":"Counter64","value":9223372036854775807},
  {"oid":".1.3.7","type":"OCTET STRING","value":"61 22 7F","encoding":"hex"},
  {"oid":".1.3.8","type":"OCTET STRING","value":"a\"\nb"},
  {"oid":".1.3.9","type":"noSuchInstance","value":null},
  {"oid":"","error":"no answer"}
]
)",
              document + json.End());
    EXPECT_EQ("[]\n", VariableWriter(true).End());
}

}  // namespace
}  // namespace vndiscover::host
