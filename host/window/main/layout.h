// The positions of the main window's controls, computed from sizes alone.
#pragma once

#include <vector>

namespace vndiscover::host {

struct Box {
    int x = 0, y = 0, width = 0, height = 0;
};

// In pixels, except dpi.
struct LayoutInput {
    int width = 0, height = 0;  // of the client area
    int statusHeight = 0;
    int dpi = 96;
    int textHeight = 0;
    int splitPercent = 62;          // of the width that the devices have
    std::vector<int> barWidths;     // of the controls in the bar, in order
    std::vector<bool> startsGroup;  // has a wider space before it
};

struct Layout {
    std::vector<Box> bar;  // wrapped into rows
    Box note;              // in a row of its own
    Box devicesLabel, devices, detailsLabel, details;
};

Layout Arrange(const LayoutInput& input);

// Moves a box into an area; one that is larger is made smaller.
Box FitInto(const Box& area, Box box);

}  // namespace vndiscover::host
