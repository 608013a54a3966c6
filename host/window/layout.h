// Where the controls of the main window are. It knows sizes, not windows.
#ifndef VNDISCOVER_HOST_WINDOW_LAYOUT_H
#define VNDISCOVER_HOST_WINDOW_LAYOUT_H

#include <vector>

namespace vndiscover::host {

struct Box {
    int x = 0, y = 0, width = 0, height = 0;
};

// Pixels, but for dpi.
struct LayoutInput {
    int width = 0, height = 0;  // of the client area
    int statusHeight = 0;
    int dpi = 96;
    int textHeight = 0;
    std::vector<int> barWidths;     // of the controls of the bar, in their order
    std::vector<bool> startsGroup;  // a wider space in front of it
};

struct Layout {
    std::vector<Box> bar;  // in rows: what does not fit into one goes into the next
    Box devicesLabel, devices, detailsLabel, details;
};

Layout Arrange(const LayoutInput& input);

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_WINDOW_LAYOUT_H
