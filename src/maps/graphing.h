// Drawing of tables: a map as an oblique wire surface, and nine points as a line over a grid. Both read the cells'
// texts, never the controller, and draw strokes with integer coordinates.
#pragma once

#include "link/shared_state.h"
#include "maps/frm_2d.h"
#include "maps/frm_3d.h"
#include "maps/frm_3d_graph.h"
#include "maps/shading.h"
#include "platform/picture.h"
#include "platform/ports.h"

#include <array>
#include <span>

namespace ecu::maps {

// Screen points of a surface by column and row of the table, row 0 the lowest load.
struct SurfacePoints {
    std::array<std::array<int, 32>, 32> surface_x{};
    std::array<std::array<int, 32>, 32> surface_y{};
};

// The floor is a parallelogram leaning by the two views (0 to 100), the values stand on it from low to high. Where
// low and high are both 0 the range of the cells is taken and left in them.
void project_surface(int rows, int cols, const platform::Grid& grid, platform::Picture& picture, int horizontal_view,
                     int vertical_view, float& low, float& high, std::span<const platform::Colour> colours,
                     SurfacePoints& points);

// Where the first point of a line graph stands and how far the nine reach, as shares of the picture's width.
inline constexpr double bars_left = 0.02;
inline constexpr double bars_width = 0.95;

// The line graph of a nine-point table. Equal limits ask for the range of the boxes and are left holding it; values
// outside given limits are drawn where they fall.
void draw_table_bars(std::span<const platform::TextBox> boxes, platform::Picture& picture, float& low, float& high);

// Which table a surface shows.
namespace surface {
inline constexpr int fuel = 0;
inline constexpr int ignition = 6;
inline constexpr int tps_fuel = 7;
inline constexpr int tps_mix = 8;
inline constexpr int lambda = 9;
} // namespace surface

class Graphing {
public:
    Graphing(const platform::Ports& ports, link::SharedState& state, Frm3d& frm_3d, Frm3dGraph& frm_3d_graph,
             Frm2d& frm_2d, const MapCellColours& map_cell_colours)
        : ports_(ports), state_(state), frm_3d_(frm_3d), frm_3d_graph_(frm_3d_graph), frm_2d_(frm_2d),
          map_cell_colours_(map_cell_colours) {}

    // Draws the surface of that kind and remembers it. A kind that does not exist ends the program.
    void draw_surface(int kind);
    int last_surface_kind() const { return last_surface_kind_; }
    const SurfacePoints& points() const { return points_; }
    float ego_surface_low() const { return ego_surface_low_; }
    float ego_surface_high() const { return ego_surface_high_; }

private:
    void draw_map(std::size_t map);

    const platform::Ports& ports_;
    link::SharedState& state_;
    Frm3d& frm_3d_;
    Frm3dGraph& frm_3d_graph_;
    Frm2d& frm_2d_;
    const MapCellColours& map_cell_colours_;
    SurfacePoints points_;
    int last_surface_kind_ = surface::fuel;
    float ego_surface_low_ = 0;
    float ego_surface_high_ = 0;
};

} // namespace ecu::maps
