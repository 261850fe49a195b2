#include "desktop/gauge_layout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace ecu::desktop {

namespace {

using Scale = platform::Gauge::Scale;

constexpr double start_angle = 225;
constexpr double sweep = 270;
constexpr double beyond_end = 4;       // degrees
constexpr double number_radius = 0.66; // of the face
constexpr int most_numbers = 14;       // more would run into each other
constexpr int most_fine_ticks = 9;     // numbered ticks up to which unnumbered ones fit between

double span_of(const Scale& scale) {
    return static_cast<double>(scale.full_scale) - static_cast<double>(scale.minimum);
}

double angle_of(const Scale& scale, double value) {
    const double span = span_of(scale);
    const double share = span > 0 ? (value - static_cast<double>(scale.minimum)) / span : 0;
    return start_angle - sweep * std::clamp(share, 0.0, 1.0);
}

QPointF on_circle(QPointF centre, double radius, double degrees) {
    const double radians = degrees * std::numbers::pi / 180;
    return {centre.x() + radius * std::cos(radians), centre.y() - radius * std::sin(radians)};
}

GaugeLayout::Arc arc_between(const Scale& scale, double from, double to) {
    const double start = angle_of(scale, from);
    return {start, std::min(0.0, angle_of(scale, to) - start)};
}

// The scale's own tick step, or the smallest round multiple of it with few enough ticks.
double number_step(const Scale& scale) {
    const auto step = static_cast<double>(scale.tick_step);
    if (step <= 0 || span_of(scale) <= 0) {
        return 0;
    }
    for (double decade = step;; decade *= 10) {
        for (const double multiple : std::array{1.0, 2.0, 5.0}) {
            if (span_of(scale) / (decade * multiple) <= most_numbers) {
                return decade * multiple;
            }
        }
    }
}

} // namespace

GaugeLayout gauge_layout(const Scale& scale, QSizeF size) {
    GaugeLayout layout;
    layout.radius = std::min(size.width(), size.height()) / 2 - 2;
    if (layout.radius < 10) {
        layout.radius = 0;
        return layout;
    }
    const double radius = layout.radius;
    layout.centre = {size.width() / 2, size.height() / 2};
    layout.zone_width = radius * 0.07;
    const double zone_radius = radius * 0.9;
    layout.zone_ring = {layout.centre.x() - zone_radius, layout.centre.y() - zone_radius, 2 * zone_radius,
                        2 * zone_radius};
    const auto zone_a = static_cast<double>(scale.zone_a_start);
    const auto zone_b = static_cast<double>(scale.zone_b_start);
    layout.zone_a = arc_between(scale, zone_a, zone_b);
    layout.zone_b = arc_between(scale, zone_b, static_cast<double>(scale.full_scale));

    if (const double step = number_step(scale); step > 0) {
        const int count = static_cast<int>(span_of(scale) / step + 1e-4);
        const int fine = count <= most_fine_ticks ? 2 : 1;
        const bool whole = std::floor(step) == step;
        for (int i = 0; i <= count * fine; ++i) {
            const double value = static_cast<double>(scale.minimum) + step * i / fine;
            const double angle = angle_of(scale, value);
            const bool major = i % fine == 0;
            layout.ticks.push_back({on_circle(layout.centre, radius * 0.94, angle),
                                    on_circle(layout.centre, radius * (major ? 0.82 : 0.88), angle), major});
            if (major) {
                layout.numbers.push_back({on_circle(layout.centre, radius * number_radius, angle),
                                          QString::number(value, 'f', whole ? 0 : 1)});
            }
        }
    }
    qsizetype longest = 1;
    for (const GaugeLayout::Number& number : layout.numbers) {
        longest = std::max(longest, number.text.size());
    }
    // A digit is about 0.6 as wide as high; neighbours at the top stand side by side.
    const double room =
        number_radius * sweep / 180 * std::numbers::pi / std::max(1.0, static_cast<double>(layout.numbers.size()) - 1);
    layout.number_height = radius * std::min(0.2, 0.85 * room / (0.6 * static_cast<double>(longest)));
    layout.caption_height = radius * 0.14;
    layout.value_height = radius * 0.32;
    const auto band = [&](double width, double top, double bottom) {
        return QRectF(layout.centre.x() - radius * width, layout.centre.y() + radius * top, 2 * radius * width,
                      radius * (bottom - top));
    };
    layout.caption = band(0.42, 0.16, 0.5);
    layout.value = band(0.6, 0.55, 0.93);
    return layout;
}

double needle_angle(const Scale& scale, double value) {
    if (value > static_cast<double>(scale.full_scale)) {
        return start_angle - sweep - beyond_end;
    }
    if (value < static_cast<double>(scale.minimum)) {
        return start_angle + beyond_end;
    }
    return std::isfinite(value) ? angle_of(scale, value) : start_angle;
}

std::vector<QPointF> needle_shape(const GaugeLayout& layout, double angle) {
    const double root = layout.radius * 0.055;
    const QPointF behind = on_circle(layout.centre, layout.radius * 0.16, angle + 180);
    return {on_circle(layout.centre, layout.radius * 0.84, angle), on_circle(layout.centre, root, angle + 90),
            on_circle(behind, root * 0.8, angle + 90), on_circle(behind, root * 0.8, angle - 90),
            on_circle(layout.centre, root, angle - 90)};
}

QString gauge_text(const Scale& scale, double value) {
    const double span = span_of(scale);
    const int decimals = span <= 10 ? 2 : span <= 100 ? 1 : 0;
    const QString text = QString::number(value, 'f', decimals);
    return text.toDouble() == 0 ? QString::number(0.0, 'f', decimals) : text; // no "-0.0"
}

} // namespace ecu::desktop
