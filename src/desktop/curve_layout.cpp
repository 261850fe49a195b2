#include "desktop/curve_layout.h"

#include "maps/graphing.h"

#include <algorithm>
#include <cmath>

namespace ecu::desktop {

namespace {

constexpr int space = 2;
constexpr int least_graph = 36;

} // namespace

CurveLayout curve_layout(QSize room, int line, int box) {
    CurveLayout layout;
    const double column = room.width() / 9.0;
    const auto edge = [&](std::size_t i) { return static_cast<int>(std::lround(static_cast<double>(i) * column)); };
    const int captions_top = room.height() - line;
    const int boxes_top = captions_top - space - box;
    for (std::size_t i = 0; i < layout.boxes.size(); ++i) {
        const int width = edge(i + 1) - edge(i);
        layout.boxes[i] = {edge(i), boxes_top, width - space, box};
        layout.captions[i] = {edge(i), captions_top, width - space, line};
    }
    layout.title = {0, 0, room.width(), line};
    // The picture reaches beyond its first and last point; those stand above the middle of the outer boxes.
    const double width = 8 * column / maps::bars_width;
    const double left = (column - space) / 2 - maps::bars_left * width;
    layout.graph = {static_cast<int>(std::lround(left)), line + space, static_cast<int>(std::lround(width)),
                    std::max(0, boxes_top - 2 * space - line)};
    return layout;
}

int least_curve_height(int line, int box) { return 2 * line + box + 3 * space + least_graph; }

} // namespace ecu::desktop
