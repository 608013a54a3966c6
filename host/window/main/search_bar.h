// The upper part of the main window: what to search for and how, and the filter.
#pragma once

#include <windows.h>

#include <vector>

#include "window/controls/placement.h"
#include "window/resource.h"
#include "window/store/settings.h"
#include "window/work/engine.h"

namespace vndiscover::host {

// The height of a line of text.
int LineHeight(HFONT font);

class SearchBar {
  public:
    // The controls are children of `parent` and are destroyed with it.
    void Create(HWND parent);
    void Restore(const Settings& settings);
    void Save(Settings& settings) const;

    // Moves the controls into rows at the top of a window of this width. Without a placement, it
    // only measures. Returns where they end, with the space below them.
    int Place(Placement* placement, HFONT font, int width, int dpi) const;

    bool UsesV3() const { return IsTicked(IDC_V3); }
    void TickV3() const { CheckDlgButton(parent_, IDC_V3, BST_CHECKED); }
    // The sweeps that the user has chosen; may be empty.
    std::vector<SweepStep> Steps(const Credentials& credentials) const;

    // Whether devices that are no printers are left out.
    bool LooksForPrinters() const { return Preset() == 0; }
    void Choose(size_t preset) const;
    // Explains the chosen preset.
    void ShowNote() const;

    // Returns false if the filter has no focus or no text.
    bool ClearFilter() const;

  private:
    HWND Control(int id) const { return GetDlgItem(parent_, id); }
    bool IsTicked(int id) const { return IsDlgButtonChecked(parent_, id) == BST_CHECKED; }
    size_t Preset() const;
    void PlaceItem(Placement& placement, int id, Box box) const;

    HWND parent_ = nullptr;
};

}  // namespace vndiscover::host
