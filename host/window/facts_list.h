// A list of facts: a label, a text, and a bar where there is a level. Details and reports use it.
#ifndef VNDISCOVER_HOST_WINDOW_FACTS_LIST_H
#define VNDISCOVER_HOST_WINDOW_FACTS_LIST_H

#include <windows.h>

#include <commctrl.h>

#include <optional>
#include <string>
#include <vector>

namespace vndiscover::host {

struct Fact {
    enum Mark { kNone, kNew, kGone, kChanged };
    std::wstring label, text;
    std::optional<int> percent;
    Mark mark = kNone;
    bool operator==(const Fact& other) const {
        return label == other.label && text == other.text && percent == other.percent &&
               mark == other.mark;
    }
};

class FactsList {
  public:
    // The list is a child of `parent` and ends with it.
    void Create(HWND parent, int id, const std::wstring& name);
    HWND Handle() const { return list_; }
    void Show(std::vector<Fact> facts);
    const std::vector<Fact>& Facts() const { return facts_; }
    void Resize(const RECT& place, int dpi);
    // Of WM_NOTIFY from this list; the result is that of the message.
    LRESULT OnNotify(NMHDR* header);

  private:
    HIMAGELIST MakeMarks() const;
    void SetImages();

    HWND list_ = nullptr;
    int dpi_ = 96;
    std::vector<Fact> facts_;
};

// Draws a level and its text into a cell of a list; colours are the user's own.
void DrawBar(HDC dc, const RECT& cell, int percent, const std::wstring& text, bool isSelected,
             int dpi);

// An image list without images that makes rows of a list high enough for bars; the list owns it.
HIMAGELIST MakeRowSpace(int dpi);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_FACTS_LIST_H
