// The positions of the main window's controls, computed from sizes alone.
#pragma once

#include <vector>

#include "window/controls/placement.h"

namespace vndiscover::host {

// In pixels, except dpi.
struct LayoutInput {
    int width = 0, height = 0;  // of the client area
    int statusHeight = 0;
    int dpi = 96;
    int textHeight = 0;
    int noteHeight = 0;
    int split = 620;                // of the width that the devices have, in thousandths
    std::vector<int> barWidths;     // of the controls in the bar, in order
    std::vector<bool> startsGroup;  // has a wider space before it
};

struct Layout {
    std::vector<Box> bar;  // wrapped into rows
    Box note;              // in rows of its own
    Box devicesLabel, devices, detailsLabel, details;
    Box gap;        // between list and details
    int least = 0;  // height of the client area in which nothing is cut
};

Layout Arrange(const LayoutInput& input);

// Moves a box into an area; one that is larger is made smaller.
Box FitInto(const Box& area, Box box);

}  // namespace vndiscover::host
