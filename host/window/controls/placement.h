// Moves children of a window in one step, and then draws all of it anew.
#pragma once

#include <windows.h>

#include <utility>
#include <vector>

#include "window/controls/owners.h"

namespace vndiscover::host {

// Sizes by the DPI of a window's screen, on systems with and without per-window DPI.

int DpiOf(HWND window);
// The dialog answers WM_DPICHANGED itself: without this, Windows would scale its controls too.
void DisableSystemScaling(HWND dialog);
// A size in pixels at 96 DPI.
inline int Scaled(int pixels, int dpi) { return MulDiv(pixels, dpi, 96); }
// The user's font for messages.
OwnedFont MakeMessageFont(int dpi);
// Of a field for one line of text, an edit control or a combo box, which gets this height: above
// its text, the system leaves as little space at each DPI.
int FitField(HWND field);

struct Box {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const Box& other) const {
        return x == other.x && y == other.y && width == other.width && height == other.height;
    }
};

inline Box BoxOf(const RECT& place) {
    return {place.left, place.top, place.right - place.left, place.bottom - place.top};
}
inline Box BoxOf(HWND window) {  // on the screen
    RECT place = {};
    GetWindowRect(window, &place);
    return BoxOf(place);
}
SIZE ClientSize(HWND window);
// Where windows may be, on the screen of this one.
Box WorkAreaOf(HWND window);
// Moves a box into an area; one that is larger is made smaller.
Box FitInto(const Box& area, Box box);

class Placement {
  public:
    explicit Placement(HWND window) : window_(window) {}
    ~Placement() {
        // Copied pixels would be those of another size.
        constexpr UINT kHow = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS;
        HDWP step = BeginDeferWindowPos(static_cast<int>(moves_.size()));
        for (const auto& [child, box] : moves_) {
            if (step)
                step =
                    DeferWindowPos(step, child, nullptr, box.x, box.y, box.width, box.height, kHow);
        }
        const bool isDone = step && EndDeferWindowPos(step);
        for (const auto& [child, box] : moves_) {  // one by one if that takes too much memory
            if (!isDone) SetWindowPos(child, nullptr, box.x, box.y, box.width, box.height, kHow);
        }
        if (!moves_.empty())
            RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    }
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;
    void Move(HWND child, const Box& box) { moves_.emplace_back(child, box); }

  private:
    HWND window_;
    std::vector<std::pair<HWND, Box>> moves_;
};

}  // namespace vndiscover::host
