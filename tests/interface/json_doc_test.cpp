#include "interface/delivery/json_doc.h"

#include <cjson/cJSON.h>
#include <gtest/gtest.h>

#include "interface/delivery/json_request.h"

namespace vndiscover {
namespace {

constexpr size_t kRoom = 64;

std::wstring NameAt(cJSON* parent, int32_t i, size_t room = kRoom) {
    wchar_t text[kRoom] = L"before";
    EXPECT_TRUE(JsonDoc::MemberName(parent, i, text, room));
    return text;
}

std::wstring StringAt(cJSON* parent, int32_t i, size_t room = kRoom) {
    wchar_t text[kRoom] = L"before";
    EXPECT_TRUE(JsonDoc::MemberString(parent, i, text, room));
    return text;
}

std::wstring Printed(const JsonDoc& document) {
    std::wstring text = L"before";
    EXPECT_EQ(-1, document.Print(&text));
    return text;
}

TEST(JsonDocTest, WhatIsNoJsonLeavesNoRoot) {
    JsonDoc document;
    EXPECT_EQ(0, document.Parse(L"{\"a\":1}"));
    EXPECT_EQ(0, document.Parse(nullptr));  // ignored
    EXPECT_NE(nullptr, document.Root());
    for (const wchar_t* broken : {L"", L"{", L"{\"a\":}", L"nonsense"}) {
        EXPECT_EQ(0, document.Parse(broken));
        EXPECT_EQ(nullptr, document.Root()) << broken;
    }
    EXPECT_EQ(-1, document.Print(nullptr));
    EXPECT_EQ(L"before", Printed(document));
}

TEST(JsonDocTest, ReadsMembersAndLeavesTheBufferAloneWhereThereIsNone) {
    JsonDoc document;
    document.Parse(L"{\"GET\":{\"1.3\":\"gr\u00fcn\",\"1.4\":5},\"oid\":\"1.3.6\",\"l\":[\"x\"]}");
    cJSON* get = JsonDoc::Member(document.Root(), "get");  // in any letter case
    ASSERT_NE(nullptr, get);
    EXPECT_EQ(2, JsonDoc::Size(get));
    EXPECT_EQ(L"1.3", NameAt(get, 0));
    EXPECT_EQ(L"gr\u00fcn", StringAt(get, 0));
    EXPECT_EQ(L"before", StringAt(get, 1));  // no string
    EXPECT_EQ(L"before", NameAt(get, 2));
    EXPECT_EQ(L"before", StringAt(get, -1));
    EXPECT_EQ(L"1.", NameAt(get, 0, 3));  // cut to its room
    EXPECT_EQ(L"gr", StringAt(get, 0, 3));
    EXPECT_EQ(nullptr, JsonDoc::Member(nullptr, "GET"));
    EXPECT_EQ(0, JsonDoc::Size(nullptr));
    EXPECT_EQ(L"before", NameAt(nullptr, 0));

    wchar_t text[kRoom] = L"before";
    EXPECT_FALSE(JsonDoc().StringOfRootMember(L"oid", text, kRoom));
    EXPECT_FALSE(document.StringOfRootMember(L"GET", text, kRoom));
    EXPECT_FALSE(document.StringOfRootArray(L"l", 1, text, kRoom));
    EXPECT_FALSE(document.StringOfRootArray(L"none", 0, text, kRoom));
    EXPECT_STREQ(L"before", text);
    EXPECT_TRUE(document.StringOfRootMember(L"oid", text, kRoom));
    EXPECT_STREQ(L"1.3.6", text);
    EXPECT_TRUE(document.StringOfRootArray(L"l", 0, text, kRoom));
    EXPECT_STREQ(L"x", text);
    EXPECT_TRUE(JsonDoc::StringOfMember(get, L"1.3", text, 3));
    EXPECT_STREQ(L"gr", text);
}

TEST(JsonDocTest, ReplacesAndAddsTextsOfAnyLengthAndDropsWhatHasNoPlace) {
    JsonDoc document;
    document.Parse(L"{\"a\":\"\",\"l\":[]}");
    cJSON* root = document.Root();
    const std::wstring longText(1000, L'\u00e4');  // 2,000 bytes of UTF-8
    JsonDoc::ReplaceMember(root, L"a", JsonDoc::NewString(longText.c_str()));
    JsonDoc::ReplaceMember(root, L"none", JsonDoc::NewString(L"dropped"));
    JsonDoc::AddString(JsonDoc::Member(root, "l"), L"first");
    JsonDoc::AddString(root, L"b", L"say \"hi\"\\\n\x01");
    JsonDoc::AddItem(root, L"c", JsonDoc::NewString(L"own"));
    JsonDoc::AddString(nullptr, L"name", L"dropped");
    JsonDoc::AddString(nullptr, L"dropped");
    const std::wstring expected = L"{\n\t\"a\":\t\"" + longText +
                                  L"\",\n\t\"l\":\t[\"first\"],\n\t\"b\":\t\"say "
                                  L"\\\"hi\\\"\\\\\\n\\u0001\",\n\t\"c\":\t\"own\"\n}";
    EXPECT_EQ(expected, Printed(document));
    // In UTF-8 each of the thousand takes two bytes; the terminator counts too.
    EXPECT_EQ(static_cast<int32_t>(expected.size() + 1000 + 1), document.Print(nullptr));
    document.SetRoot(JsonDoc::NewString(L"alone"));
    EXPECT_EQ(L"\"alone\"", Printed(document));
}

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
