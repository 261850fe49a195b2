// Where the parts of a nine-point curve stand in the room that it is given: its title, the graph, and below the graph
// the nine boxes with the captions of the axis. Each point of the graph stands above its box. Pure geometry.
#pragma once

#include <QRect>

#include <array>

namespace ecu::desktop {

struct CurveLayout {
    QRect title; // its line is shared with what the curve runs over
    QRect graph;
    std::array<QRect, 9> boxes;
    std::array<QRect, 9> captions;
};

// `line` is the height of a line of text, `box` that of a box.
CurveLayout curve_layout(QSize room, int line, int box);
// The least height in which the graph can still be read.
int least_curve_height(int line, int box);

} // namespace ecu::desktop
