#include "interface/delivery/json_doc.h"

#include <cjson/cJSON.h>

#include <utility>

#include "support/copy_text.h"
#include "support/text_convert.h"

namespace vndiscover {
namespace {

struct PrintedDeleter {
    void operator()(char* printed) const noexcept { cJSON_free(printed); }
};
using Printed = std::unique_ptr<char, PrintedDeleter>;

void CopyOut(const char* utf8, wchar_t* out, size_t outSize) {
    if (utf8 && out) CopyText(out, outSize, Utf8ToWide(utf8).c_str());
}

bool CopyString(const cJSON* item, wchar_t* out, size_t outSize) {
    const char* value = cJSON_GetStringValue(item);
    CopyOut(value, out, outSize);
    return value != nullptr;
}

// The document now owns the item.
void HandedOver(OwnedJsonItem& item) { static_cast<void>(item.release()); }

}  // namespace

void JsonItemDeleter::operator()(cJSON* item) const noexcept { cJSON_Delete(item); }

int32_t JsonDoc::Parse(const wchar_t* wideText) {
    if (!wideText) return 0;
    text = WideToUtf8(wideText);
    root.reset(cJSON_Parse(text.c_str()));
    if (!root) text.clear();
    return 0;
}

cJSON* JsonDoc::Member(cJSON* parent, const char* name) {
    return cJSON_GetObjectItem(parent, name);
}

int32_t JsonDoc::Size(const cJSON* item) { return item ? cJSON_GetArraySize(item) : 0; }

bool JsonDoc::MemberName(cJSON* parent, int32_t i, wchar_t* out, size_t outSize) {
    if (const cJSON* child = cJSON_GetArrayItem(parent, i)) CopyOut(child->string, out, outSize);
    return true;
}

bool JsonDoc::MemberString(cJSON* parent, int32_t i, wchar_t* out, size_t outSize) {
    CopyOut(cJSON_GetStringValue(cJSON_GetArrayItem(parent, i)), out, outSize);
    return true;
}

bool JsonDoc::StringOfMember(cJSON* object, const wchar_t* name, wchar_t* out, size_t outSize) {
    return CopyString(Member(object, WideToUtf8(name).c_str()), out, outSize);
}

bool JsonDoc::StringOfRootArray(const wchar_t* name, int32_t i, wchar_t* out,
                                size_t outSize) const {
    return CopyString(cJSON_GetArrayItem(Member(root.get(), WideToUtf8(name).c_str()), i), out,
                      outSize);
}

void JsonDoc::AddItem(cJSON* object, const wchar_t* name, OwnedJsonItem item) {
    if (cJSON_AddItemToObject(object, WideToUtf8(name).c_str(), item.get())) HandedOver(item);
}

void JsonDoc::AddString(cJSON* object, const wchar_t* name, const wchar_t* text) {
    AddItem(object, name, NewString(text));
}

void JsonDoc::AddString(cJSON* array, const wchar_t* text) {
    OwnedJsonItem item = NewString(text);
    if (cJSON_AddItemToArray(array, item.get())) HandedOver(item);
}

OwnedJsonItem JsonDoc::NewString(const wchar_t* text) {
    return OwnedJsonItem(cJSON_CreateString(WideToUtf8(text).c_str()));
}

void JsonDoc::ReplaceMember(cJSON* parent, const wchar_t* name, OwnedJsonItem item) {
    if (cJSON_ReplaceItemInObject(parent, WideToUtf8(name).c_str(), item.get())) HandedOver(item);
}

int32_t JsonDoc::Print(std::wstring* out) const {
    const Printed printed(root ? cJSON_Print(root.get()) : nullptr);
    if (!printed) return -1;
    if (!out) return static_cast<int32_t>(std::char_traits<char>::length(printed.get())) + 1;
    *out = Utf8ToWide(printed.get());
    return -1;
}

}  // namespace vndiscover
