#include "maps/basic_mapping.h"

#include "maps/map_axes.h"
#include "platform/display_mask.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ecu::maps {

using calibration::parameter;
using calibration::table;
using platform::KeyPress;
using platform::masked;
using platform::round_to_even;
namespace key = platform::key;

namespace {

constexpr int column_width = 38;

// What the four maps differ in, by map_view_index.
struct MapRow {
    const calibration::Table* table;
    std::string_view name;
    std::string_view group; // its pending cells are counted under
    int id;                 // of its block table and of its surface
    KeyStep step;
    std::string_view default_text;
    std::string_view graph_low;
    std::string_view graph_high;
};

constexpr KeyStep gain_step{.step = 0.0078125, .minimum = 0, .maximum = 1.9921875, .mask = "#.000"};
// The mix map steps like a gain, not by its percent, and the ignition map stops at 0 though its scale goes to -16.
constexpr std::array<MapRow, 4> map_rows{{
    {&table("MAPM"), "fuel map", "Fuel", surface::fuel, gain_step, "1.000", "0.6", "1.6"},
    {&table("IGN3"),
     "ignition map",
     "Ignition",
     surface::ignition,
     {.step = 0.25, .minimum = 0, .maximum = 47.75, .mask = "#0.00"},
     "0.00",
     "0.0",
     "50.0"},
    {&table("TPFM"), "TPS fuel map", "TPS fuel", surface::tps_fuel, gain_step, "0.00", "0.0", "2.0"},
    {&table("TPFP"), "TPS mix map", "TPS mix", surface::tps_mix, gain_step, "0.00", "0.0", "100.0"},
}};

constexpr KeyStep box_step{.step = 0.1, .minimum = -16, .maximum = 65.535, .mask = "##.000"};

constexpr std::array box_reads = calibration::read_requests('B', 'Z');

} // namespace

BasicMapping::BasicMapping(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                           const calibration::Scales& scales, const messages::EcuLiveData& live, Frm3d& frm_3d,
                           const platform::CheckBox& TPS_mapped, shell::Navigation& navigation,
                           BlockSelection& selection, SurfaceWindow& surface_window, MapCellColours& map_cell_colours)
    : ports_(ports), scales_(scales), live_(live), form_(frm_3d), TPS_mapped_(TPS_mapped), selection_(selection),
      surface_window_(surface_window), map_cell_colours_(map_cell_colours),
      editor_(ports, state, comm, scales, navigation,
              {.form = frm_3d.form,
               .title = "Basic Mapping",
               .update_button = frm_3d.update_button,
               .exit_button = frm_3d.exit_button,
               .status = frm_3d.map_status,
               .prepare = [this] { prepare_window(); },
               .read = [this] { return read_everything(); },
               .opened =
                   [this] {
                       form_.show_map_type[0].set_checked(true);
                       shade_all();
                   },
               .allow = [this](bool allowed) { allow_menus(allowed); },
               .walked = [this] { shade_all(); },
               .redraw =
                   [this] {
                       if (surface_window_.visible()) {
                           show_graph(static_cast<std::size_t>(map_view_index_));
                       }
                   },
               .ready = [this] { form_.inj_map.set_focus(); },
               .leaving =
                   [this] {
                       surface_window_.hide();
                       if (selection_.close_modifier) {
                           selection_.close_modifier();
                       }
                   },
               .read_again = &frm_3d.read_again,
               .reveal = [this](const platform::Control& control) { reveal(control); }}) {
    form_.menufileexit.clicked = [this] { editor_.close(); };
    form_.menuupdate.clicked = [this] { form_.update_button.press(); };
    form_.show_this_graph.clicked = [this] {
        show_graph(static_cast<std::size_t>(map_view_index_));
        surface_window_.raise();
    };
    form_.menuresetmap_fuel.clicked = [this] {
        reset_map(0, "this function will overwrite the Fuel table, continue?");
    };
    form_.menuresetmap_Ign.clicked = [this] {
        reset_map(1, "this function will overwrite the Ignition table, continue?");
    };
    wire_boxes();
    wire_grids();
}

// In the order in which Update walks them: the boxes, then the maps.
void BasicMapping::wire_boxes() {
    const auto texts = [](std::string_view demo, std::string_view name) {
        return ItemTexts{.group = "Boxes", .demo = demo, .place = [name](int, int) { return std::string(name); }};
    };
    editor_.add(parameter("FUEL_MX"), 0, form_.ecu_pgm[0], texts("10.200", "Injector Main Adj."));
    editor_.add(parameter("FUEL_B"), 0, form_.ecu_pgm[1], texts("-.525", "Injector Idle Adj."));
    editor_.add(parameter("TPS_RPM"), 0, form_.tps_rpm, texts("300", "TPS Map cut-in RPM"));
    colour_by_focus(form_.tps_rpm); // has no keys
    for (std::size_t i = 0; i < form_.ecu_pgm.size(); ++i) {
        colour_by_focus(form_.ecu_pgm[i]);
        form_.ecu_pgm[i].key_down = [this, i](KeyPress& press) {
            const std::span boxes(form_.ecu_pgm.begin(), form_.ecu_pgm.end());
            if (press.code == key::enter) {
                press.code = 0;
                form_.update_button.press();
            } else if (!step_box(form_.ecu_pgm[i], box_step, press) && !move_along(boxes, i, press) &&
                       press.code == key::up && !press.shift && !press.ctrl) {
                press.code = 0;
                (i == 1 ? form_.ecu_pgm[0] : form_.tps_rpm).set_focus();
            }
        };
    }
}

void BasicMapping::wire_grids() {
    for (std::size_t n = 0; n < map_rows.size(); ++n) {
        const MapRow& map = map_rows[n];
        editor_.add(*map.table, *form_.grids[n],
                    {.group = map.group, .demo = map.default_text, .place = [this, n](int row, int column) {
                         return cell_place(row, column, n < 2, scales_);
                     }});
        wire_grid(*form_.grids[n], {.block_table_id = map.id, .step = map.step}, selection_,
                  [this] { form_.update_button.press(); });
        form_.show_map_type[n].clicked = [this, n] { show_map(static_cast<int>(n)); };
    }
}

// -- Opening

void BasicMapping::prepare_window() {
    for (platform::Grid* grid : form_.grids) {
        grid->set_row_height(0, 0);
        grid->set_column_width(0, 0);
        for (int column = 1; column <= grid->columns(); ++column) {
            grid->set_column_width(column, column_width);
        }
    }
    label_map_axis(0);
    for (int i = 0; i < 9; ++i) {
        form_.Label6[static_cast<std::size_t>(i)].set_text(std::to_string(speed_mark(i / 8.0, scales_)));
    }
    form_.show_map_type[0].set_checked(true);
    form_.inj_map.set_visible(true);
}

// Each map is shown while it is read.
bool BasicMapping::read_everything() {
    for (const calibration::ReadRequest& request : box_reads) {
        editor_.ask(request);
    }
    for (std::size_t n = 0; n < map_rows.size(); ++n) {
        form_.show_map_type[n].set_checked(true);
        if (!editor_.read_table(*map_rows[n].table, calibration::read_32, map_rows[n].name)) {
            return false;
        }
    }
    return true;
}

void BasicMapping::allow_menus(bool allowed) {
    for (platform::MenuItem* item : {&form_.menuresetmap_fuel, &form_.menuresetmap_Ign, &form_.menu_autotune}) {
        item->set_enabled(allowed);
    }
}

void BasicMapping::shade(std::size_t map, float low, float high) {
    shade_map(*form_.grids[map], Legend(form_.bk_color.begin(), form_.bk_color.end()), map_cell_colours_.maps[map], low,
              high);
}

void BasicMapping::shade_all() {
    for (std::size_t n = 0; n < map_rows.size(); ++n) {
        shade(n, 0, 0);
    }
}

void BasicMapping::reset_map(std::size_t map, std::string_view question) {
    if (ask_caution(ports_.dialogs, question) && (!before_reset || before_reset(*map_rows[map].table))) {
        write_all(*form_.grids[map], map_rows[map].default_text);
    }
}

// -- Which map, its axes and its graph

void BasicMapping::show_map(int index) {
    map_view_index_ = static_cast<std::int16_t>(index);
    for (std::size_t n = 0; n < form_.grids.size(); ++n) {
        form_.grids[n]->set_visible(static_cast<int>(n) == index);
    }
    label_map_axis(index);
    for (int i = 0; i < 4; ++i) {
        ports_.waiting.process_events();
    }
}

void BasicMapping::label_map_axis(int index) {
    if (index < 0 || index > 3) {
        return;
    }
    const bool pressure = index < 2;
    for (int i = 0; i < 17; ++i) {
        form_.Label5[static_cast<std::size_t>(i)].set_text(std::to_string(load_mark(i / 16.0, pressure, scales_)));
    }
    form_.Map_dims[0].set_text(pressure ? "kPa" : "% TPS");
}

void BasicMapping::reveal(const platform::Control& control) {
    const auto* const grid = std::ranges::find(form_.grids, &control);
    if (grid != form_.grids.end() && !(*grid)->visible()) {
        form_.show_map_type[static_cast<std::size_t>(grid - form_.grids.begin())].set_checked(true);
    }
}

void BasicMapping::show_graph(std::size_t map) {
    surface_window_.draw(map_rows[map].id, map_rows[map].graph_low, map_rows[map].graph_high);
    surface_window_.show();
}

void BasicMapping::show_selected_map_graph() {
    const int map = platform::chosen(form_.show_map_type);
    if (map >= 0) {
        surface_window_.show();
        show_graph(static_cast<std::size_t>(map));
    }
}

// -- Live read-out

void BasicMapping::refresh_live() {
    form_.control_lambda.set_text(masked(live_.lambda, "0.000"));
    if (live_.lambda == 0) {
        form_.AF_condition.set_text("");
    } else if (live_.lambda > 1) {
        form_.AF_condition.set_text("Lean");
        form_.AF_condition.set_fore_colour(platform::light_red);
    } else if (live_.lambda < 1) {
        form_.AF_condition.set_text("Rich");
        form_.AF_condition.set_fore_colour(platform::palette[1]);
    }
    form_.base_timing.set_text(masked(std::abs(live_.ignition_timing), "0.00") +
                               (live_.ignition_timing < 0 ? "A" : "B"));
    form_.control_ego_gain.set_text(masked(live_.ego_correction, "0.000"));
    form_.control_map_gain.set_text(masked(live_.map_enrichment, "0.000"));
    form_.mapping_rpm[0].set_text(masked(live_.engine_rpm, "####0"));
    form_.Inj_pulse_width.set_text(masked(live_.injector_pw * 1000, "#0.000"));
    move_markers();
}

void BasicMapping::move_markers() {
    const int vertical_extent = round_to_even(form_.map_beg.top() - form_.map_end.top());
    const int horizontal_extent = round_to_even(form_.rpm_end.left() - form_.rpm_beg.left());
    const bool by_throttle = map_view_index_ > 1 || TPS_mapped_.checked();
    const float load = by_throttle ? live_.tps_position : live_.map_position;
    const int vertical = round_to_even(static_cast<double>(load) * vertical_extent);
    const double speed = static_cast<double>(live_.engine_rpm) / static_cast<double>(scales_.full_scale_rpm);
    const int horizontal = std::clamp(round_to_even(speed * horizontal_extent), 0, horizontal_extent);
    form_.map_p_ptr.set_top(form_.map_beg.top() - static_cast<float>(vertical));
    form_.map_r_ptr.set_left(form_.rpm_beg.left() + static_cast<float>(horizontal));
}

} // namespace ecu::maps
