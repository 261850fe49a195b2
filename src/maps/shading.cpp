#include "maps/shading.h"

#include "editing/editing_rules.h"

namespace ecu::maps {

using namespace editing;

namespace {

// Rounded to single precision one by one, so that a value on a threshold falls on the same side as ever.
std::array<float, 7> thresholds(float low, float high) {
    const float span = high - low;
    std::array<float, 7> result{};
    for (std::size_t k = 0; k < result.size(); ++k) {
        result[k] = static_cast<float>(static_cast<double>(low) +
                                       static_cast<double>(span) * 0.125 * static_cast<double>(k + 1));
    }
    return result;
}

} // namespace

void shade_map(platform::Grid& grid, Legend legend, std::span<platform::Colour> map_cell_colours, float low,
               float high) {
    const Repaint repaint(grid);
    std::array<float, 256> texts{};
    const auto values = std::span(texts).first(map_cell_colours.size());
    const auto unread = [&grid](std::size_t i) {
        return grid.cell_unread(row_of(grid, static_cast<int>(i)), column_of(grid, static_cast<int>(i)));
    };
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<float>(platform::leading_number(text_at(grid, static_cast<int>(i))));
    }
    if (low == 0 && high == 0) {
        high = -1000;
        low = 1000;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!unread(i)) {
                high = values[i] > high ? values[i] : high;
                low = values[i] < low ? values[i] : low;
            }
        }
    }
    const std::array<float, 7> limits = thresholds(low, high);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (unread(i)) {
            continue;
        }
        std::size_t exceeded = 0;
        while (exceeded < limits.size() && values[i] > limits[exceeded]) {
            ++exceeded;
        }
        const int row = row_of(grid, static_cast<int>(i));
        const int column = column_of(grid, static_cast<int>(i));
        grid.set_cell_back(row, column, legend[limits.size() - exceeded].back_colour());
        map_cell_colours[i] = grid.cell_back(row, column).value_or(platform::bright_white);
    }
}

} // namespace ecu::maps
