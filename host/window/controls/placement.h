// Sizes and places of windows and controls, on screens of any DPI.
#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "window/controls/owners.h"

namespace vndiscover::host {

// The DPI of the window's screen or, on a system that has one for all screens, that one.
int DpiOf(HWND window);
// For a dialog that handles WM_DPICHANGED itself: otherwise Windows would scale its controls too.
void DisableSystemScaling(HWND dialog);
// A size in pixels at 96 DPI.
inline int Scaled(int pixels, int dpi) { return MulDiv(pixels, dpi, 96); }
// The user's font for messages.
OwnedFont MakeMessageFont(int dpi);
// The height of a field for one line of text: the system leaves the same few pixels around the text
// at each DPI. A combo box gets this height here.
int FitField(HWND field);
// The size that a text needs in the font of a control. `flags`: of DrawText. `width`: at most,
// unless it is one line.
SIZE TextSize(HWND control, const std::wstring& text, UINT flags, int width = 0);
// The height of a combo box with its open list; 0 for other controls.
int OpenHeight(HWND control);

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
// The part of the window's screen in which windows may be.
Box WorkAreaOf(HWND window);
// Moves a box into an area, and makes it smaller if it is larger than that.
Box FitInto(const Box& area, Box box);

// Collects moves of a window's children. Its end makes them all in one step and draws the window.
class Placement {
  public:
    explicit Placement(HWND window) : window_(window) {}
    ~Placement() {
        // The window is drawn anew: its old pixels are those of another size.
        constexpr UINT kHow = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS;
        HDWP step = BeginDeferWindowPos(static_cast<int>(moves_.size()));
        for (const auto& [child, box] : moves_) {
            if (step)
                step =
                    DeferWindowPos(step, child, nullptr, box.x, box.y, box.width, box.height, kHow);
        }
        const bool isDone = step && EndDeferWindowPos(step);
        for (const auto& [child, box] : moves_) {  // one by one if memory was too short for that
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
