// The shading of a map: every cell's background is one of the legend's eight colours by the eighth of the range that
// its value lies in, lowest index 7, highest index 0. It replaces every background, yellow ones included, but a cell
// that was never read has no value to be shaded by.
#pragma once

#include "platform/grid.h"

#include <array>
#include <cstddef>
#include <span>

namespace ecu::maps {

using Legend = std::span<const platform::TextBox, 8>;

// The colour that each table cell got, by table index; the surface graph draws with them.
template <std::size_t Cells> using CellColours = std::array<platform::Colour, Cells>;
struct MapCellColours {
    std::array<CellColours<256>, 4> maps{}; // by map_view_index
    CellColours<81> lambda{};
};

// `low` and `high` both 0 ask for the range of the cells.
void shade_map(platform::Grid& grid, Legend legend, std::span<platform::Colour> map_cell_colours, float low,
               float high);

} // namespace ecu::maps
