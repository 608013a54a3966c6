// One JSON document. Texts come and go as UTF-16; inside they are UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

struct cJSON;

namespace vndiscover {

struct JsonItemDeleter {
    void operator()(cJSON* item) const noexcept;
};
// An item that belongs to no document yet.
using OwnedJsonItem = std::unique_ptr<cJSON, JsonItemDeleter>;

// Items handed out belong to the document. Buffer sizes are in characters, with the terminator; a
// longer text is cut.
class JsonDoc {
  public:
    // Null is ignored. On failure Root() is null. Always 0.
    int32_t Parse(const wchar_t* wideText);

    cJSON* Root() const noexcept { return root.get(); }

    // Null when there is no such member. Names compare without regard to ASCII letter case.
    static cJSON* Member(cJSON* parent, const char* name);
    static int32_t Size(const cJSON* item);  // count of children; null gives 0

    // The i-th child's name, or its string value; out is left alone where there is none. Always
    // true.
    static bool MemberName(cJSON* parent, int32_t i, wchar_t* out, size_t outSize);
    static bool MemberString(cJSON* parent, int32_t i, wchar_t* out, size_t outSize);

    // True if the root has that member with a string value, which is copied.
    bool StringOfRootMember(const wchar_t* name, wchar_t* out, size_t outSize) const;

    // Of any length.
    static OwnedJsonItem NewString(const wchar_t* text);

    // Without such a member the new item is dropped.
    static void ReplaceMember(cJSON* parent, const wchar_t* name, OwnedJsonItem item);

    // Building a document; what cannot be added is dropped. Nothing in the module calls it.
    void SetRoot(OwnedJsonItem item);
    static void AddItem(cJSON* object, const wchar_t* name, OwnedJsonItem item);
    static void AddString(cJSON* object, const wchar_t* name, const wchar_t* text);
    static void AddString(cJSON* array, const wchar_t* text);

    // True if the object has that member with a string value, which is copied.
    static bool StringOfMember(cJSON* object, const wchar_t* name, wchar_t* out, size_t outSize);
    // The same for the i-th string of the root's array of that name. Nothing in the module calls
    // it.
    bool StringOfRootArray(const wchar_t* name, int32_t i, wchar_t* out, size_t outSize) const;

    // With null: the printed UTF-8 length plus 1, or -1 when there is no root or printing failed.
    // With a text: the printed document, indented, goes into it; -1.
    int32_t Print(std::wstring* out) const;

  private:
    std::string text;  // what was parsed
    OwnedJsonItem root;
    // There is no `lib`: the JSON library is linked and takes no handle.
};

}  // namespace vndiscover
