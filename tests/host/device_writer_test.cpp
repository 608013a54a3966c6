// Rows of a sweep: fit for a terminal, a CSV reader and a JSON parser, whatever devices answer.
#include "host/device_writer.h"

#include <cjson/cJSON.h>
#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

constexpr char kHostile[] = "\x1B[2J\"a\", b\r\nc";
constexpr char kDocument[] =
    "{\n\t\"DiscoverOID\":\t\".1.3.6\",\n\t\"GET\":\t{\n\t\t\".1.3.6.1\":\t\"LaserPro\",\n"
    "\t\t\".1.3.6.2\":\t\"\xC2\x9B[2J \\u001b\"\n\t}\n}";

TEST(TableRows, AreAlignedUnderOneHead) {
    DeviceWriter writer(Format::kTable, ValueKind::kRaw, false);
    EXPECT_EQ("ADDRESS          VALUE\n10.77.1.22       LaserPro\n",
              writer.Row("10.77.1.22", "LaserPro"));
    EXPECT_EQ("192.168.100.200  two lines\n", writer.Row("192.168.100.200", "two\r\nlines"));
    EXPECT_EQ("10.77.1.23       (no value)\n", writer.Row("10.77.1.23", ""));
    EXPECT_EQ("10.77.1.24       0x1B5B324A2261222C20620D0A63\n",
              writer.Row("10.77.1.24", kHostile));
    EXPECT_EQ("", writer.End());
}

TEST(TableRows, ListTheAnswersOfADocument) {
    DeviceWriter writer(Format::kTable, ValueKind::kDocument, true);
    EXPECT_EQ(
        "ADDRESS                    VALUE\n"
        "fe80::1:22                 .1.3.6.1                       LaserPro\n"
        "                           .1.3.6.2                       0xC29B5B324A201B\n",
        writer.Row("fe80::1:22", kDocument));
    // A document that was cut, or that has no answers, is shown as it is.
    EXPECT_EQ("fe80::1:22                 { \"GET\": \"\n",
              writer.Row("fe80::1:22", "{\n\t\"GET\":\t\""));
    EXPECT_EQ("fe80::1:22                 {\"a\":1}\n", writer.Row("fe80::1:22", "{\"a\": 1}"));
}

TEST(CsvRows, QuoteEveryFieldAndStayOnOneLine) {
    DeviceWriter raw(Format::kCsv, ValueKind::kRaw, false);
    EXPECT_EQ("\"10.0.0.1\",\"a \"\"b\"\", c d\"\n", raw.Row("10.0.0.1", "a \"b\", c\r\nd"));
    EXPECT_EQ("\"10.0.0.1\",\"\"\n", raw.Row("10.0.0.1", ""));
    DeviceWriter document(Format::kCsv, ValueKind::kDocument, false);
    EXPECT_EQ("\"10.0.0.1\",\"{\"\"GET\"\":{\"\".1.3\"\":\"\"x\\ny\"\"}}\"\n",
              document.Row("10.0.0.1", "{\"GET\": {\".1.3\": \"x\\ny\"}}"));
}

TEST(JsonRows, MakeOneDocument) {
    DeviceWriter raw(Format::kJson, ValueKind::kRaw, false);
    std::string text = raw.Row("10.0.0.1", "B\xFCro \"1\"\r\n2");
    text += raw.Row("10.0.0.2", kHostile) + raw.End();
    EXPECT_EQ(
        "[\n  {\"address\":\"10.0.0.1\",\"value\":\"B\xC3\xBCro \\\"1\\\"\\r\\n2\"},\n"
        "  {\"address\":\"10.0.0.2\",\"value\":\"0x1B5B324A2261222C20620D0A63\"}\n]\n",
        text);
    EXPECT_EQ("[]\n", DeviceWriter(Format::kJson, ValueKind::kRaw, false).End());

    DeviceWriter documents(Format::kJson, ValueKind::kDocument, false);
    text = documents.Row("10.0.0.1", kDocument);
    text += documents.Row("10.0.0.2", std::string(kDocument).substr(0, 40)) + documents.End();
    const JsonItem parsed = ParseDocument(text);
    ASSERT_TRUE(parsed) << text;
    const auto answers =
        AnswersOf(cJSON_GetObjectItem(cJSON_GetArrayItem(parsed.get(), 0), "value"));
    ASSERT_EQ(2u, answers.size());
    EXPECT_EQ("LaserPro", answers[0].second);
    EXPECT_EQ("\xEF\xBF\xBD[2J \x1B", answers[1].second);
    EXPECT_EQ(std::string::npos, text.find('\xC2'));
    EXPECT_TRUE(cJSON_IsString(cJSON_GetObjectItem(cJSON_GetArrayItem(parsed.get(), 1), "value")));
}

TEST(AnswerRows, ShowTheOneAnswerOfOurOwnRequest) {
    std::string problem;
    EXPECT_EQ(RequestFor(".1.3.6"), PrepareRequest(RequestFor(".1.3.6"), problem));
    DeviceWriter writer(Format::kCsv, ValueKind::kAnswer, false);
    EXPECT_EQ("\"10.0.0.1\",\"LaserPro\"\n", writer.Row("10.0.0.1", kDocument));
}

TEST(JsonRequests, LoseTheirBlanksAndHaveALimit) {
    std::string problem;
    EXPECT_EQ("{\"GET\":{\".1.3 x\":\"\"}}",
              PrepareRequest("\xEF\xBB\xBF{ \"GET\": {\r\n\".1.3 x\": \"\" } }\n", problem));
    for (const char* text : {"", "[]", "\"GET\"", "{\"GET\": {", "{'GET': 1}"}) {
        EXPECT_FALSE(PrepareRequest(text, problem)) << text;
    }
    const std::string frame = "{\"a\":\"\"}";
    const auto sized = [&](size_t size) {
        return "{\"a\":\"" + std::string(size - frame.size(), 'x') + "\"}" + std::string(500, ' ');
    };
    EXPECT_TRUE(PrepareRequest(sized(2047), problem));
    EXPECT_FALSE(PrepareRequest(sized(2048), problem));
    EXPECT_NE(std::string::npos, problem.find("2048 bytes"));
}

}  // namespace
}  // namespace vndiscover::host
