#include "interface/delivery/json_request.h"

#include "interface/delivery/json_doc.h"
#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/text_convert.h"

namespace vndiscover {
namespace {

constexpr size_t kMemberChars = 1024;  // 2,048 bytes of UTF-16

void FillInMember(cJSON* get, int32_t j, const FetchValue& fetch) {
    wchar_t key[kMemberChars] = {};
    wchar_t value[kMemberChars] = {};
    JsonDoc::MemberName(get, j, key, kMemberChars);
    JsonDoc::MemberString(get, j, value, kMemberChars);
    DebugLogW(L"Key [%s]\n", key);
    DebugLogW(L"  value [%s]\n", value);
    char szKey[kOidTextSize] = {};
    const bool isWhole = CopyText(szKey, WideToAnsi(key).c_str());
    DebugLogA("  szKey [%s]\n", szKey);
    std::string answer;
    // A key that was cut would name another variable, so it is not requested.
    if (!isWhole || !fetch(szKey, answer)) return;
    JsonDoc::ReplaceMember(get, key, JsonDoc::NewString(AnsiToWide(answer.c_str()).c_str()));
}

}  // namespace

std::string ReadDiscoveryOid(const char* jsonRequest) {
    JsonDoc document;
    document.Parse(Utf8ToWide(jsonRequest).c_str());
    // As large as a request, since a text that was cut would name another variable.
    wchar_t wszDisOID[kJsonRequestSize] = {};
    document.StringOfRootMember(L"DiscoverOID", wszDisOID, kJsonRequestSize);
    DebugLogW(L"wszDisOID [%s]\n", wszDisOID);
    std::string szDisOid = WideToUtf8(wszDisOID);
    DebugLogA("szDisOid [%s]\n", szDisOid.c_str());
    return szDisOid;
}

bool FillInDocument(const char* jsonRequest, const FetchValue& fetch, std::string& document) {
    JsonDoc request;
    request.Parse(Utf8ToWide(jsonRequest).c_str());
    if (!request.Root()) return false;
    DebugLogW(L"GET command\n");
    cJSON* get = JsonDoc::Member(request.Root(), "GET");
    const int32_t count = JsonDoc::Size(get);
    for (int32_t j = 0; j < count; ++j) FillInMember(get, j, fetch);
    if (request.Print(nullptr) >= 1) {
        std::wstring printed;
        request.Print(&printed);
        document = WideToUtf8(printed.c_str());
    }
    return true;
}

size_t Utf8PrefixLength(const std::string& text, size_t limit) {
    if (text.size() <= limit) return text.size();
    size_t length = limit;
    // A byte 10xxxxxx continues the character before it.
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
    return length;
}

}  // namespace vndiscover
