// Moves children of a window in one step, and then draws all of it anew.
#pragma once

#include <windows.h>

namespace vndiscover::host {

struct Box {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const Box& other) const {
        return x == other.x && y == other.y && width == other.width && height == other.height;
    }
};

class Placement {
  public:
    explicit Placement(HWND window) : window_(window), moves_(BeginDeferWindowPos(20)) {}
    // Copied pixels would be those of another size.
    ~Placement() {
        if (moves_) EndDeferWindowPos(moves_);
        if (hasMoved_)
            RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    }
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;
    void Move(HWND child, const Box& box) {
        hasMoved_ = true;
        if (moves_)
            moves_ = DeferWindowPos(moves_, child, nullptr, box.x, box.y, box.width, box.height,
                                    SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    }

  private:
    HWND window_;
    HDWP moves_;  // null: the system has no memory for it, and nothing moves
    bool hasMoved_ = false;
};

}  // namespace vndiscover::host
