#include "interface/delivery/json_request.h"

#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/text_convert.h"

namespace vndiscover {

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

JsonForm::JsonForm(const char* jsonRequest) {
    document_.Parse(Utf8ToWide(jsonRequest).c_str());
    if (!IsJson()) return;
    DebugLogW(L"GET command\n");
    get_ = JsonDoc::Member(document_.Root(), "GET");
}

const char* JsonForm::NextOid() {
    while (next_ < JsonDoc::Size(get_)) {
        key_[0] = L'\0';
        wchar_t value[kMemberChars] = {};
        JsonDoc::MemberName(get_, next_, key_, kMemberChars);
        JsonDoc::MemberString(get_, next_, value, kMemberChars);
        ++next_;
        DebugLogW(L"Key [%s]\n", key_);
        DebugLogW(L"  value [%s]\n", value);
        const bool isWhole = CopyText(szKey_, WideToAnsi(key_).c_str());
        DebugLogA("  szKey [%s]\n", szKey_);
        if (isWhole) return szKey_;
    }
    return nullptr;
}

void JsonForm::Put(const char* answer) {
    JsonDoc::ReplaceMember(get_, key_, JsonDoc::NewString(AnsiToWide(answer).c_str()));
}

std::string JsonForm::Print() const {
    std::wstring printed;
    if (document_.Print(nullptr) >= 1) document_.Print(&printed);
    return WideToUtf8(printed.c_str());
}

size_t Utf8PrefixLength(const std::string& text, size_t limit) {
    if (text.size() <= limit) return text.size();
    size_t length = limit;
    // A byte 10xxxxxx continues the character before it.
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
    return length;
}

}  // namespace vndiscover
