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
constexpr double beyond_end = 4;   // degrees
constexpr int most_numbers = 14;   // more would be too small to read
constexpr int most_fine_ticks = 9; // numbered ticks up to which unnumbered ones fit between

// In shares of the face's radius.
constexpr double tick_end = 0.94;
constexpr double major_tick = 0.82;
constexpr double minor_tick = 0.88;
constexpr double numbers_within = 0.79;
constexpr double figures_within = 0.93;
constexpr double lowest_figure = 0.86;
constexpr double largest_number = 0.195;
constexpr double largest_figure = 0.34;
constexpr double gap = 0.03;
constexpr double caption_top = 0.25;     // so far below the hub that a needle at its minimum passes beside it
constexpr double caption_bottom = 0.58;  // room for two lines
constexpr double one_line_bottom = 0.42; // above most numbers
constexpr double caption_half = 0.34;
constexpr double narrow_caption_half = 0.26;

constexpr double shrink = 0.95;
constexpr double least_share = 0.05; // of the radius: smaller than can be read

// Of bold digits, in shares of the font's pixel size; most fonts' are narrower.
constexpr double digit_height = 0.76;
constexpr double digit_width = 0.7;
constexpr double sign_width = 0.42;

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

QSizeF text_size(const QString& text, double height) {
    double width = 0;
    for (const QChar sign : text) {
        width += sign.isDigit() ? digit_width : sign_width;
    }
    return QSizeF(width, digit_height) * height;
}

// As far out in its direction as its corners stay within the circle.
QRectF area_within(QPointF centre, double radius, double angle, QSizeF size) {
    const double radians = angle * std::numbers::pi / 180;
    const double along = size.width() * std::abs(std::cos(radians)) + size.height() * std::abs(std::sin(radians));
    const double corner = (size.width() * size.width() + size.height() * size.height()) / 4 - radius * radius;
    const double distance = (-along + std::sqrt(std::max(0.0, along * along - 4 * corner))) / 2;
    QRectF area(QPointF(), size);
    area.moveCenter(on_circle(centre, std::max(0.0, distance), angle));
    return area;
}

bool meets_a_number(const GaugeLayout& layout, const QRectF& area) {
    const double room = layout.radius * gap;
    return std::ranges::any_of(layout.numbers, [&](const GaugeLayout::Number& number) {
        return &number.area != &area && number.area.adjusted(-room, -room, room, room).intersects(area);
    });
}

void place_numbers(GaugeLayout& layout, const Scale& scale) {
    const double step = number_step(scale);
    if (step <= 0) {
        return;
    }
    const int count = static_cast<int>(span_of(scale) / step + 1e-4);
    const int fine = count <= most_fine_ticks ? 2 : 1;
    const bool whole = std::floor(step) == step;
    std::vector<double> angles;
    for (int i = 0; i <= count * fine; ++i) {
        const double value = static_cast<double>(scale.minimum) + step * i / fine;
        const double angle = angle_of(scale, value);
        const bool major = i % fine == 0;
        layout.ticks.push_back({on_circle(layout.centre, layout.radius * tick_end, angle),
                                on_circle(layout.centre, layout.radius * (major ? major_tick : minor_tick), angle),
                                major});
        if (major) {
            layout.numbers.push_back({{}, QString::number(value, 'f', whole ? 0 : 1)});
            angles.push_back(angle);
        }
    }
    layout.number_height = layout.radius * largest_number / shrink;
    do {
        layout.number_height *= shrink;
        for (std::size_t i = 0; i < angles.size(); ++i) {
            GaugeLayout::Number& number = layout.numbers[i];
            number.area = area_within(layout.centre, layout.radius * numbers_within, angles[i],
                                      text_size(number.text, layout.number_height));
        }
    } while (layout.number_height > layout.radius * least_share &&
             std::ranges::any_of(layout.numbers, [&](const GaugeLayout::Number& number) {
                 return meets_a_number(layout, number.area);
             }));
}

// Below the middle, as large as the numbers leave room for the widest value of the scale.
void place_figures(GaugeLayout& layout, const Scale& scale) {
    const auto reach = layout.radius * figures_within;
    const std::array texts{gauge_text(scale, static_cast<double>(scale.minimum)),
                           gauge_text(scale, static_cast<double>(scale.full_scale))};
    layout.value_height = layout.radius * largest_figure / shrink;
    do {
        layout.value_height *= shrink;
        const QSizeF size =
            text_size(texts[0], layout.value_height).expandedTo(text_size(texts[1], layout.value_height));
        const double half = std::min(size.width() / 2, reach);
        const double bottom = std::min(std::sqrt(reach * reach - half * half), layout.radius * lowest_figure);
        layout.value = QRectF(QPointF(layout.centre.x() - half, layout.centre.y() + bottom - size.height()), size);
    } while (layout.value_height > layout.radius * least_share && meets_a_number(layout, layout.value));
}

// Between the hub and the figures, two lines high, or else one, and as wide as the numbers beside it leave room.
void place_caption(GaugeLayout& layout) {
    layout.caption_height = layout.radius * 0.135;
    const auto place = [&](double half, double bottom) {
        layout.caption =
            QRectF(layout.centre.x() - layout.radius * half, layout.centre.y() + layout.radius * caption_top,
                   2 * layout.radius * half, layout.radius * (bottom - caption_top));
        return !meets_a_number(layout, layout.caption);
    };
    if (place(caption_half, caption_bottom) || place(narrow_caption_half, caption_bottom)) {
        return;
    }
    for (double half = caption_half; half > least_share && !place(half, one_line_bottom); half *= shrink) {
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
    if (zone_a > static_cast<double>(scale.minimum)) {
        layout.zone_a = arc_between(scale, zone_a, zone_b);
    }
    layout.zone_b = arc_between(scale, zone_b, static_cast<double>(scale.full_scale));
    place_numbers(layout, scale);
    place_figures(layout, scale);
    place_caption(layout);
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
    // No longer behind the hub than the hub itself reaches: the caption stands right below it.
    const QPointF behind = on_circle(layout.centre, layout.radius * 0.07, angle + 180);
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
