// A list of facts, each with a label, a text, and a bar if it is a level. For details and reports.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "window/controls/list_control.h"

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

class FactsList : private ListModel {
  public:
    // The list is a child of `parent` and is destroyed with it.
    void Create(HWND parent, int id, const std::wstring& name);
    HWND Handle() const { return list_.Handle(); }
    void Show(std::vector<Fact> facts);
    void Resize(const RECT& place, int dpi);

  private:
    size_t Count() const override { return facts_.size(); }
    std::wstring CellText(size_t row, size_t column) const override;
    std::optional<int> Level(size_t row, size_t column) const override;
    int Image(size_t row) const override { return facts_[row].mark - 1; }
    void SetRowImages();

    ListControl list_{*this};
    int dpi_ = 96;
    std::vector<Fact> facts_;
};

}  // namespace vndiscover::host
