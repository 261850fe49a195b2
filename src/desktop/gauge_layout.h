// Where everything of a round gauge stands, as numbers: the widget only draws what this says. The dial turns over 270
// degrees, from the lower left clockwise to the lower right, and leaves the gap to the figures of the value. Texts
// never meet each other or the ticks, however long the numbers are: they shrink and move inwards first. Angles are in
// degrees, 0 to the right and 90 up, as painters count them.
#pragma once

#include "platform/gauge.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <vector>

namespace ecu::desktop {

struct GaugeLayout {
    struct Arc {
        double start = 0; // degrees
        double span = 0;  // clockwise is negative; 0: not drawn
    };
    struct Tick {
        QPointF outer;
        QPointF inner;
        bool major = true;
    };
    struct Number {
        QRectF area;
        QString text;
    };

    QPointF centre;
    double radius = 0; // of the face
    QRectF zone_ring;  // the circle on whose line the zones lie
    double zone_width = 0;
    Arc zone_a;
    Arc zone_b;
    std::vector<Tick> ticks;
    std::vector<Number> numbers;
    // Pixel sizes of the texts, each centred in its area. In a font of wider digits than are reckoned with here a text
    // must be drawn smaller, so that it stays inside.
    double number_height = 0;
    double caption_height = 0;
    double value_height = 0;
    QRectF caption;
    QRectF value;
};

GaugeLayout gauge_layout(const platform::Gauge::Scale& scale, QSizeF size);

// Where the needle points. A value off the scale rests a little beyond its end; not a number rests at the start.
double needle_angle(const platform::Gauge::Scale& scale, double value);
// Tip, then the two corners at its root.
std::vector<QPointF> needle_shape(const GaugeLayout& layout, double angle);

// The value in figures: as many decimals as the scale can use.
QString gauge_text(const platform::Gauge::Scale& scale, double value);

} // namespace ecu::desktop
