// One JSON document. Text is UTF-16 outside and UTF-8 inside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

struct cJSON;

namespace vndiscover {

struct JsonItemDeleter {
    void operator()(cJSON* item) const noexcept;
};
// An item that no document owns yet.
using OwnedJsonItem = std::unique_ptr<cJSON, JsonItemDeleter>;

// The document owns the items that it returns. Buffer sizes are in characters and include the
// terminator; longer text is cut.
class JsonDoc {
  public:
    // Does nothing for null. On failure Root() is null. Always 0.
    int32_t Parse(const wchar_t* wideText);

    cJSON* Root() const noexcept { return root.get(); }

    // Null if there is no such member. Names are compared without regard to ASCII letter case.
    static cJSON* Member(cJSON* parent, const char* name);
    static int32_t Size(const cJSON* item);  // number of children; 0 for null

    // Copies the i-th child's name, or its string value; out is left alone if there is none. Always
    // true.
    static bool MemberName(cJSON* parent, int32_t i, wchar_t* out, size_t outSize);
    static bool MemberString(cJSON* parent, int32_t i, wchar_t* out, size_t outSize);

    // Copies the string value of the root's member. False if there is no such member or value.
    bool StringOfRootMember(const wchar_t* name, wchar_t* out, size_t outSize) const {
        return StringOfMember(root.get(), name, out, outSize);
    }

    // Of any length.
    static OwnedJsonItem NewString(const wchar_t* text);

    // If there is no such member, the new item is discarded.
    static void ReplaceMember(cJSON* parent, const wchar_t* name, OwnedJsonItem item);

    // To build a document; items that cannot be added are discarded. Nothing in the module calls
    // these.
    void SetRoot(OwnedJsonItem item) { root = std::move(item); }
    static void AddItem(cJSON* object, const wchar_t* name, OwnedJsonItem item);
    static void AddString(cJSON* object, const wchar_t* name, const wchar_t* text);
    static void AddString(cJSON* array, const wchar_t* text);

    // StringOfRootMember for any object.
    static bool StringOfMember(cJSON* object, const wchar_t* name, wchar_t* out, size_t outSize);
    // Copies the i-th string of the root's array of that name. Nothing in the module calls it.
    bool StringOfRootArray(const wchar_t* name, int32_t i, wchar_t* out, size_t outSize) const;

    // If out is null, returns the length of the printed UTF-8 plus 1, or -1 if there is no root or
    // printing fails. Otherwise prints the document into out, indented, and returns -1.
    int32_t Print(std::wstring* out) const;

  private:
    std::string text;  // the parsed text
    OwnedJsonItem root;
    // There is no `lib`: the JSON library is linked statically and needs no handle.
};

}  // namespace vndiscover
