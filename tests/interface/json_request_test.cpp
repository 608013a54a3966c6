#include "interface/delivery/json_request.h"

#include <gtest/gtest.h>

namespace vndiscover {
namespace {

// What a device that answers each question gives.
std::string Filled(const char* request, const std::string& answer) {
    std::string document = "before";
    const bool isJson = FillInDocument(
        request, [&](const char*, std::string& value) { return value = answer, true; }, document);
    return isJson ? document : document + " and no JSON";
}

TEST(JsonRequest, KeepsTextOfOtherLanguages) {
    // The answer is in the ANSI code page, the document in UTF-8.
    EXPECT_EQ(
        "{\n\t\"GET\":\t{\n\t\t\"1\":\t\"gr\xC3\xBCn\"\n\t},\n\t\"note\":\t\"\xE2\x82\xAC\"\n}",
        Filled("{\"GET\":{\"1\":\"\"},\"note\":\"\xE2\x82\xAC\"}", "gr\xFCn"));
}

TEST(JsonRequest, OddDocumentsAreDeliveredAsTheyAre) {
    for (const char* odd : {"{\n}", "[]", "5", "{\n\t\"GET\":\t5\n}", "{\n\t\"GET\":\t[]\n}"}) {
        EXPECT_EQ(odd, Filled(odd, "x"));
    }
    EXPECT_EQ("", ReadDiscoveryOid("nonsense"));
    for (const char* broken : {"", "{", "nonsense", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ("before and no JSON", Filled(broken, "x"));
    }
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
