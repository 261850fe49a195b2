#include "maps/graphing.h"

#include "editing/editing_rules.h"
#include "platform/display_mask.h"

#include <algorithm>
#include <vector>

namespace ecu::maps {

using namespace editing;

using platform::Colour;
using platform::Picture;
using platform::round_to_even;

namespace {

constexpr int scale_lines = 10;
constexpr int caption_height = 14;
constexpr int farthest_percent = 32767; // a scale far too narrow must not leave the range of coordinates
constexpr Colour frame_colour = platform::palette[9];
constexpr Colour scale_colour = platform::palette[8];
constexpr Colour caption_colour = platform::palette[7];

float number_of(std::string_view text) { return static_cast<float>(platform::leading_number(text)); }

// The frame of a surface in the picture's coordinates; y falls upward.
struct SurfaceFrame {
    int left, base, width, height, skew_x, skew_y;

    SurfaceFrame(const Picture& picture, int horizontal_view, int vertical_view)
        : left(round_to_even(picture.width() * 0.025)), base(round_to_even(picture.height() * 0.95)),
          width(round_to_even(picture.width() * 0.65)), height(round_to_even(picture.height() * 0.4)),
          skew_x(round_to_even(horizontal_view / 100.0 * picture.width() * 0.5)),
          skew_y(round_to_even((100 - vertical_view) / 100.0 * picture.height() * 0.5)) {}
};

void draw_frame(const SurfaceFrame& f, Picture& picture, float low, float high) {
    const int right = f.left + f.width;
    const int back_left = f.left + f.skew_x;
    const int back_right = right + f.skew_x;
    const int back = f.base - f.skew_y;
    const int room = f.height / scale_lines; // of a caption that stands at every line
    const int every = 2 * room >= caption_height ? 2 : 5 * room >= caption_height ? 5 : scale_lines;
    for (int n = 0; n <= scale_lines; ++n) {
        const int rise = round_to_even(static_cast<double>(f.height) * n / scale_lines);
        picture.line(f.left, f.base - rise, back_left, back - rise, scale_colour);
        picture.line(back_left, back - rise, back_right, back - rise, scale_colour);
        if (n % every == 0) {
            const double value = low + (static_cast<double>(high) - low) * n / scale_lines;
            picture.print(f.left + 2, f.base - rise - caption_height,
                          platform::masked(static_cast<float>(value), "##0.00"), caption_colour);
        }
    }
    picture.line(f.left, f.base, right, f.base, frame_colour);
    picture.line(right, f.base, back_right, back, frame_colour);
    picture.line(back_right, back, back_left, back, frame_colour);
    picture.line(back_left, back, f.left, f.base, frame_colour);
    picture.line(back_left, back, back_left, back - f.height, frame_colour);
    picture.line(back_left, back - f.height, back_right, back - f.height, frame_colour);
    picture.line(back_right, back - f.height, back_right, back, frame_colour);
}

void find_range(std::span<const float> values, float& low, float& high) {
    if (values.empty()) {
        low = -1;
        high = 1;
        return;
    }
    const auto [least, greatest] = std::ranges::minmax(values);
    low = least;
    high = greatest;
    if (low == high) {
        high += 1;
        low -= 1;
    }
}

int percent_of_range(float value, float low, float high) {
    if (low == high) {
        return 0;
    }
    const double percent = (static_cast<double>(value) - low) * 100 / (static_cast<double>(high) - low);
    return std::clamp(round_to_even(percent), -farthest_percent, farthest_percent);
}

} // namespace

void project_surface(int rows, int cols, const platform::Grid& grid, Picture& picture, int horizontal_view,
                     int vertical_view, float& low, float& high, std::span<const Colour> colours,
                     SurfacePoints& points) {
    std::array<float, 256> texts{};
    const auto values = std::span(texts).first(static_cast<std::size_t>(rows * cols));
    std::array<bool, 256> unread{}; // nothing is known there, and nothing drawn
    std::vector<float> known;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const int cell = static_cast<int>(i);
        values[i] = number_of(text_at(grid, cell));
        unread[i] = grid.cell_unread(row_of(grid, cell), column_of(grid, cell));
        if (!unread[i]) {
            known.push_back(values[i]);
        }
    }
    if (low == 0 && high == 0) {
        find_range(known, low, high);
    }
    const SurfaceFrame f(picture, horizontal_view, vertical_view);
    picture.clear();
    draw_frame(f, picture, low, high);

    const auto columns = static_cast<std::size_t>(cols);
    const auto depth = static_cast<std::size_t>(rows);
    for (std::size_t c = 0; c < columns; ++c) {
        for (std::size_t r = 0; r < depth; ++r) {
            const int p = percent_of_range(values[depth * c + r], low, high);
            const double across = static_cast<double>(c) / (cols - 1);
            const double inward = static_cast<double>(r) / (rows - 1);
            points.surface_x[c][r] = round_to_even(f.left + f.width * across + f.skew_x * inward);
            const int floor = round_to_even(f.base - f.skew_y * inward);
            points.surface_y[c][r] = round_to_even(floor - static_cast<double>(f.height) * p / 100);
        }
    }
    const auto& x = points.surface_x;
    const auto& y = points.surface_y;
    for (std::size_t c = 0; c < columns; ++c) {
        for (std::size_t r = 0; r < depth; ++r) {
            const Colour colour = colours[depth * c + r];
            if (unread[depth * c + r]) {
                continue;
            }
            if (c + 1 < columns && !unread[depth * (c + 1) + r]) {
                picture.line(x[c][r], y[c][r], x[c + 1][r], y[c + 1][r], colour);
            }
            if (r + 1 < depth && !unread[depth * c + r + 1]) {
                picture.line(x[c][r], y[c][r], x[c][r + 1], y[c][r + 1], colour);
            }
        }
    }
    picture.refresh();
}

void draw_table_bars(std::span<const platform::TextBox> boxes, Picture& picture, float& low, float& high) {
    const int width = picture.width();
    const int height = picture.height();
    const int plot_width = round_to_even(width * bars_width);
    const int plot_height = round_to_even(height * 0.85);
    const int left_margin = round_to_even(width * bars_left);
    const int bottom_margin = round_to_even(height * 0.12);
    const auto x_of = [&](std::size_t i) {
        return round_to_even(static_cast<double>(i) / static_cast<double>(boxes.size() - 1) * plot_width + left_margin);
    };

    picture.set_back_colour(platform::black);
    picture.clear();
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        picture.line(x_of(i), 0, x_of(i), height, platform::palette[7]);
    }
    const auto first_known = std::ranges::find_if_not(boxes, &platform::TextBox::unread);
    const float first = first_known == boxes.end() ? 0 : number_of(first_known->text());
    if (low == high) {
        low = high = first;
        for (const platform::TextBox& box : boxes) {
            const float value = box.unread() ? first : number_of(box.text());
            high = value > high ? value : high;
            low = value < low ? value : low;
        }
    }
    float span = high - low;
    if (span == 0) {
        high = first + 1;
        low = first - 1;
        span = high - low;
    }
    const auto y_of = [&](std::size_t i) {
        const double share = static_cast<double>(number_of(boxes[i].text()) - low) / span;
        return round_to_even(height - (share * plot_height + bottom_margin));
    };
    if (!boxes[0].unread()) {
        picture.point(x_of(0), y_of(0), platform::yellow);
    }
    for (std::size_t i = 1; i < boxes.size(); ++i) {
        if (boxes[i - 1].unread() || boxes[i].unread()) {
            continue; // nothing is known there
        }
        picture.line(x_of(i - 1), y_of(i - 1), x_of(i), y_of(i), platform::yellow);
    }
    picture.refresh();
}

void Graphing::draw_map(std::size_t map) {
    float low = number_of(frm_3d_graph_.low_scale.text());
    float high = number_of(frm_3d_graph_.high_scale.text());
    project_surface(16, 16, *frm_3d_.grids[map], frm_3d_graph_.Picture1, frm_3d_graph_.HScroll1.value(),
                    frm_3d_graph_.VScroll1.value(), low, high, map_cell_colours_.maps[map], points_);
}

void Graphing::draw_surface(int kind) {
    state_.reset_comm_watch = true; // a long redraw is not the controller's silence
    switch (kind) {
    case surface::fuel:
        draw_map(0);
        break;
    case surface::ignition:
        draw_map(1);
        break;
    case surface::tps_fuel:
        draw_map(2);
        break;
    case surface::tps_mix:
        draw_map(3);
        break;
    case surface::lambda:
        ego_surface_low_ = ego_surface_high_ = 0; // its own range at each drawing
        project_surface(9, 9, frm_2d_.lambda_sp_table, frm_2d_.ego_sp_graph, frm_2d_.ego_h_perspective.value(),
                        frm_2d_.ego_v_perspective.value(), ego_surface_low_, ego_surface_high_,
                        map_cell_colours_.lambda, points_);
        break;
    default:
        ports_.program.end(1);
    }
    last_surface_kind_ = kind;
}

} // namespace ecu::maps
