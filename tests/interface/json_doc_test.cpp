// JSON documents, as far as no export uses or shows it.
#include "interface/delivery/json_doc.h"

#include <gtest/gtest.h>

#include "interface/delivery/json_request.h"

namespace vndiscover {
namespace {

TEST(JsonDocTest, ReadsStringsAndOtherwiseLeavesTheBufferAlone) {
    JsonDoc document;
    document.Parse(L"{\"GET\":{\"1.3\":\"gr\u00fcn\",\"1.4\":5},\"l\":[\"x\"]}");
    cJSON* const get = JsonDoc::Member(document.Root(), "get");  // in any letter case
    wchar_t text[8] = L"before";
    EXPECT_TRUE(JsonDoc::MemberName(get, 2, text, 8) && JsonDoc::MemberName(nullptr, 0, text, 8));
    EXPECT_TRUE(JsonDoc::MemberString(get, 1, text, 8) && JsonDoc::MemberString(get, -1, text, 8));
    EXPECT_FALSE(document.StringOfRootMember(L"GET", text, 8));
    EXPECT_FALSE(document.StringOfRootArray(L"l", 1, text, 8));
    EXPECT_FALSE(document.StringOfRootArray(L"none", 0, text, 8));
    EXPECT_STREQ(L"before", text);
    EXPECT_TRUE(document.StringOfRootArray(L"l", 0, text, 8));
    EXPECT_STREQ(L"x", text);
    EXPECT_TRUE(JsonDoc::StringOfMember(get, L"1.3", text, 3));
    EXPECT_STREQ(L"gr", text);  // cut to the buffer
    JsonDoc::MemberName(get, 0, text, 3);
    EXPECT_STREQ(L"1.", text);
}

TEST(JsonDocTest, BuildsTextsOfAnyLength) {
    JsonDoc document;
    std::wstring printed;
    EXPECT_EQ(-1, document.Print(nullptr));
    document.Parse(L"{\"a\":\"\",\"l\":[]}");
    cJSON* const root = document.Root();
    const std::wstring longText(1000, L'\u00e4');
    JsonDoc::ReplaceMember(root, L"a", JsonDoc::NewString(longText.c_str()));
    JsonDoc::ReplaceMember(root, L"none", JsonDoc::NewString(L"dropped"));
    JsonDoc::AddString(JsonDoc::Member(root, "l"), L"first");
    JsonDoc::AddString(root, L"b", L"own");
    JsonDoc::AddString(nullptr, L"name", L"dropped");
    JsonDoc::AddString(nullptr, L"dropped");
    EXPECT_EQ(-1, document.Print(&printed));
    EXPECT_EQ(L"{\n\t\"a\":\t\"" + longText + L"\",\n\t\"l\":\t[\"first\"],\n\t\"b\":\t\"own\"\n}",
              printed);
    // Each of the thousand takes two bytes in UTF-8; the terminator counts too.
    EXPECT_EQ(static_cast<int32_t>(printed.size() + 1000 + 1), document.Print(nullptr));
    document.SetRoot(JsonDoc::NewString(L"alone"));
    document.Print(&printed);
    EXPECT_EQ(L"\"alone\"", printed);
}

TEST(JsonRequest, OddDocumentsAreDeliveredUnchanged) {
    for (const char* odd : {"{\n}", "[]", "5", "{\n\t\"GET\":\t5\n}", "{\n\t\"GET\":\t[]\n}"}) {
        JsonForm form(odd);
        EXPECT_TRUE(form.IsJson());
        EXPECT_EQ(nullptr, form.NextOid());
        EXPECT_EQ(odd, form.Print());
    }
    EXPECT_FALSE(JsonForm("").IsJson() || JsonForm(nullptr).IsJson());
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
