#include "window/main/layout.h"

#include <algorithm>

namespace vndiscover::host {

Layout Arrange(const LayoutInput& input) {
    const auto scaled = [&](int pixels) { return pixels * input.dpi / 96; };
    const int margin = scaled(8);
    const int gap = scaled(6);
    const int rowHeight = input.textHeight + scaled(10);
    const int right = input.width - margin;
    Layout layout;
    int x = margin;
    int y = margin;
    for (size_t index = 0; index < input.barWidths.size(); ++index) {
        const int width = std::min(input.barWidths[index], std::max(0, right - margin));
        if (x > margin && input.startsGroup[index]) x += scaled(12);
        if (x > margin && x + width > right) {
            x = margin;
            y += rowHeight + gap;
        }
        layout.bar.push_back({x, y, width, rowHeight});
        x += width + gap;
    }
    y += rowHeight + scaled(3);
    const int inner = std::max(0, right - margin);
    layout.note = {margin, y, inner, input.noteHeight};
    y += input.noteHeight + gap;
    const int least = std::min(scaled(280), inner / 2);
    const int detailsWidth =
        std::min(std::max(inner * (1000 - input.split) / 1000, least), inner - least);
    const int devicesWidth = std::max(0, inner - detailsWidth - margin);
    const int listTop = y + input.textHeight + scaled(4);
    layout.least = listTop + scaled(140) + gap + input.statusHeight;
    const int listHeight = std::max(0, input.height - input.statusHeight - gap - listTop);
    layout.devicesLabel = {margin, y, devicesWidth, input.textHeight};
    layout.devices = {margin, listTop, devicesWidth, listHeight};
    const int detailsLeft = margin + devicesWidth + margin;
    layout.detailsLabel = {detailsLeft, y, detailsWidth, input.textHeight};
    layout.details = {detailsLeft, listTop, detailsWidth, listHeight};
    layout.gap = {detailsLeft - margin, listTop, margin, listHeight};
    return layout;
}

Box FitInto(const Box& area, Box box) {
    box.width = std::min(box.width, area.width);
    box.height = std::min(box.height, area.height);
    box.x = std::clamp(box.x, area.x, area.x + area.width - box.width);
    box.y = std::clamp(box.y, area.y, area.y + area.height - box.height);
    return box;
}

}  // namespace vndiscover::host
