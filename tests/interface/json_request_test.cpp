#include "interface/delivery/json_request.h"

#include <gtest/gtest.h>

#include <map>

#include "helpers/unit_log.h"

namespace vndiscover {
namespace {

using Lines = std::vector<std::string>;

// A device that answers for the OIDs it knows.
FetchValue Device(const std::map<std::string, std::string>& values) {
    return [values](const char* oid, std::string& value) {
        const auto found = values.find(oid);
        if (found == values.end()) return false;
        value = found->second;
        return true;
    };
}

TEST(JsonRequest, FillsInWhatTheDeviceAnswers) {
    std::string document;
    UnitLog log;
    ASSERT_TRUE(FillInDocument(R"({"DiscoverOID":"1.3","GET":{"1.1":"","1.2":"kept"}})",
                               Device({{"1.1", "Model 1"}}), document));
    EXPECT_EQ(
        "{\n\t\"DiscoverOID\":\t\"1.3\",\n\t\"GET\":\t{\n\t\t\"1.1\":\t\"Model 1\",\n"
        "\t\t\"1.2\":\t\"kept\"\n\t}\n}",
        document);
    EXPECT_EQ((Lines{"GET command\n", "Key [1.1]\n", "  value []\n", "  szKey [1.1]\n",
                     "Key [1.2]\n", "  value [kept]\n", "  szKey [1.2]\n"}),
              log.Lines());
}

TEST(JsonRequest, KeepsTextOfOtherLanguages) {
    std::string document;
    // The answer is in the ANSI code page, the document in UTF-8.
    ASSERT_TRUE(FillInDocument("{\"GET\":{\"1\":\"\"},\"note\":\"\xE2\x82\xAC\"}",
                               Device({{"1", "gr\xFCn"}}), document));
    EXPECT_NE(std::string::npos, document.find("gr\xC3\xBCn"));
    EXPECT_NE(std::string::npos, document.find("\xE2\x82\xAC"));
}

TEST(JsonRequest, OddDocumentsAreDeliveredAsTheyAre) {
    for (const char* odd : {"{}", "[]", "5", R"({"GET":5})", R"({"GET":[]})", R"({"get":{}})"}) {
        std::string document;
        EXPECT_TRUE(FillInDocument(odd, Device({{"1.1", "x"}}), document)) << odd;
        EXPECT_FALSE(document.empty()) << odd;
    }
    std::string document = "before";
    for (const char* broken : {"", "{", "nonsense", static_cast<const char*>(nullptr)}) {
        EXPECT_FALSE(FillInDocument(broken, Device({}), document));
    }
    EXPECT_EQ("before", document);
}

TEST(JsonRequest, NobodyIsAskedForAKeyThatWasCut) {
    const std::string longest(kOidTextSize - 1, '1');
    std::string document;
    const FetchValue anything = [](const char*, std::string& value) {
        value = "answer";
        return true;
    };
    FillInDocument(("{\"GET\":{\"" + longest + "\":\"\"}}").c_str(), anything, document);
    EXPECT_NE(std::string::npos, document.find("answer"));
    FillInDocument(("{\"GET\":{\"" + longest + "1\":\"\"}}").c_str(), anything, document);
    EXPECT_EQ(std::string::npos, document.find("answer"));
}

TEST(JsonRequest, NamesTheDiscoveryOid) {
    UnitLog log;
    EXPECT_EQ(".1.3.6", ReadDiscoveryOid(R"({"DiscoverOID":".1.3.6"})"));
    EXPECT_EQ((Lines{"wszDisOID [.1.3.6]\n", "szDisOid [.1.3.6]\n"}), log.Lines());
    EXPECT_EQ("", ReadDiscoveryOid(R"({"DiscoverOID":5})"));
    EXPECT_EQ("", ReadDiscoveryOid("{}"));
    EXPECT_EQ("", ReadDiscoveryOid("nonsense"));
}

TEST(JsonRequest, CutsTextBetweenCharacters) {
    const std::string text = "a\xE2\x82\xAC\xF0\x9F\x98\x80z";  // 1, 3, 4 and 1 bytes
    const size_t expected[] = {0, 1, 1, 1, 4, 4, 4, 4, 8, 9, 9};
    for (size_t limit = 0; limit < 11; ++limit) {
        EXPECT_EQ(expected[limit], Utf8PrefixLength(text, limit)) << limit;
    }
}

}  // namespace
}  // namespace vndiscover
