#include <gtest/gtest.h>

#include <string>

#include "interface/delivery/json_doc.h"

namespace vndiscover {
namespace {

TEST(JsonDocTest, BuildsADocumentAndReadsItBack) {
    JsonDoc seed;
    seed.Parse(L"{\"list\": []}");
    JsonDoc::AddString(JsonDoc::Member(seed.Root(), "list"), L"first");
    JsonDoc::AddString(JsonDoc::Member(seed.Root(), "list"), L"\u00e4");
    JsonDoc::AddString(seed.Root(), L"name", L"value");
    JsonDoc::AddItem(seed.Root(), L"item", JsonDoc::NewString(L"own"));

    wchar_t text[8] = L"before";
    EXPECT_TRUE(seed.StringOfRootArray(L"list", 1, text, 8));
    EXPECT_STREQ(L"\u00e4", text);
    EXPECT_FALSE(seed.StringOfRootArray(L"list", 2, text, 8));
    EXPECT_FALSE(seed.StringOfRootArray(L"none", 0, text, 8));
    EXPECT_STREQ(L"\u00e4", text);
    EXPECT_TRUE(JsonDoc::StringOfMember(seed.Root(), L"item", text, 8));
    EXPECT_STREQ(L"own", text);

    JsonDoc built;
    built.SetRoot(JsonDoc::NewString(L"alone"));
    std::wstring printed;
    built.Print(&printed);
    EXPECT_EQ(L"\"alone\"", printed);
    // What cannot be added is dropped, not leaked.
    JsonDoc::AddString(nullptr, L"name", L"value");
    JsonDoc::AddString(nullptr, L"value");
    EXPECT_EQ(3, JsonDoc::Size(seed.Root()));
}

}  // namespace
}  // namespace vndiscover
