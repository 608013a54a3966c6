// A list of facts, each with a label, a text, and a bar if it is a level. For details and reports.
#pragma once

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
    // The list is a child of `parent` and is destroyed with it.
    void Create(HWND parent, int id, const std::wstring& name);
    HWND Handle() const { return list_; }
    void Show(std::vector<Fact> facts);
    const std::vector<Fact>& Facts() const { return facts_; }
    void Resize(const RECT& place, int dpi);
    // Handles WM_NOTIFY from this list and returns the result of the message.
    LRESULT OnNotify(NMHDR* header);

  private:
    HIMAGELIST MakeMarks() const;
    void SetRowImages();

    HWND list_ = nullptr;
    int dpi_ = 96;
    std::vector<Fact> facts_;
};

// Draws a level and its text into a cell of the list that `draw` is about, in the user's colours.
void DrawBar(const NMLVCUSTOMDRAW& draw, const RECT& cell, int percent, const std::wstring& text,
             int dpi);

}  // namespace vndiscover::host
