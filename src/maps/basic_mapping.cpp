#include "maps/basic_mapping.h"

#include "platform/display_mask.h"

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

constexpr float short_wait = 0.1F; // seconds, around every sequence of messages
constexpr int column_width = 38;
constexpr int paint_interval = 60; // ms, of a map that is being read

// What the four maps differ in, by map_view_index.
struct MapRow {
    const calibration::Table* table;
    std::string_view name;
    int id; // of its block table and of its surface
    KeyStep step;
    std::string_view default_text;
    std::string_view graph_low;
    std::string_view graph_high;
};

constexpr KeyStep gain_step{.step = 0.0078125, .minimum = 0, .maximum = 1.9921875, .mask = "#.000"};
// The mix map steps like a gain, not by its percent, and the ignition map stops at 0 though its scale goes to -16.
constexpr std::array<MapRow, 4> map_rows{{
    {&table("MAPM"), "fuel map", surface::fuel, gain_step, "1.000", "0.6", "1.6"},
    {&table("IGN3"),
     "ignition map",
     surface::ignition,
     {.step = 0.25, .minimum = 0, .maximum = 47.75, .mask = "#0.00"},
     "0.00",
     "0.0",
     "50.0"},
    {&table("TPFM"), "TPS fuel map", surface::tps_fuel, gain_step, "0.00", "0.0", "2.0"},
    {&table("TPFP"), "TPS mix map", surface::tps_mix, gain_step, "0.00", "0.0", "100.0"},
}};

constexpr KeyStep box_step{.step = 0.1, .minimum = -16, .maximum = 65.535, .mask = "##.000"};

constexpr std::array box_reads = calibration::read_requests('B', 'Z');
constexpr int blocks_of_map = 256 / calibration::read_32.cells;

} // namespace

BasicMapping::BasicMapping(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                           const calibration::Scales& scales, const messages::EcuLiveData& live, Frm3d& frm_3d,
                           const platform::CheckBox& TPS_mapped, shell::Navigation& navigation,
                           BlockSelection& selection, SurfaceWindow& surface_window, MapCellColours& map_cell_colours)
    : ports_(ports), state_(state), scales_(scales), live_(live), form_(frm_3d), TPS_mapped_(TPS_mapped),
      navigation_(navigation), selection_(selection), surface_window_(surface_window),
      map_cell_colours_(map_cell_colours), link_(ports, state, comm),
      paint_timer_(ports.timers.make_timer(paint_interval)) {
    form_.form.on_activate = [this] { open(); };
    form_.form.on_unload = [this] { unloading(); };
    form_.Command3d1.clicked = [this] { close(); };
    form_.menufileexit.clicked = [this] { close(); };
    form_.Command3d2.clicked = [this] { update_changed_entries(); };
    form_.menuupdate.clicked = [this] { form_.Command3d2.press(); };
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
    paint_timer_->on_tick = [this] {
        if (filling_ != nullptr) {
            filling_->end_batch();
            filling_->begin_batch();
            form_.map_status.set_text(progress_);
        }
    };
    wire_boxes();
    for (std::size_t n = 0; n < map_rows.size(); ++n) {
        form_.show_map_type[n].clicked = [this, n] { show_map(static_cast<int>(n)); };
        wire_grid(*form_.grids[n], {.block_table_id = map_rows[n].id, .step = map_rows[n].step}, selection,
                  [this] { form_.Command3d2.press(); });
        form_.grids[n]->cell_changed = [this, n](int row, int column) { cell_changed(n, row, column); };
    }
}

void BasicMapping::wire_boxes() {
    const auto wire = [this](platform::TextBox& box) {
        box.changed = [this, &box] {
            box.set_back_colour(platform::pending);
            note_pending();
        };
        colour_by_focus(box);
    };
    wire(form_.tps_rpm); // has no keys
    for (std::size_t i = 0; i < form_.ecu_pgm.size(); ++i) {
        wire(form_.ecu_pgm[i]);
        form_.ecu_pgm[i].key_down = [this, i](KeyPress& press) {
            const std::span boxes(form_.ecu_pgm.begin(), form_.ecu_pgm.end());
            if (press.code == key::enter) {
                press.code = 0;
                form_.Command3d2.press();
            } else if (!step_box(form_.ecu_pgm[i], box_step, press) && !move_along(boxes, i, press) &&
                       press.code == key::up && !press.shift && !press.ctrl) {
                press.code = 0;
                (i == 1 ? form_.ecu_pgm[0] : form_.tps_rpm).set_focus();
            }
        };
    }
}

// -- Opening and leaving

void BasicMapping::open() {
    form_.form.set_caption("Basic Mapping" + state_.link_title_suffix);
    if (window_activated_) {
        return;
    }
    window_activated_ = true;
    exit_requested_ = false;
    update_again_ = false;
    not_taken_ = 0;
    const int opening = ++opening_;
    loading_maps_ = true;
    allow_editing(false);
    link_.pause_polling(short_wait);
    prepare_window();

    for (const calibration::ReadRequest& request : box_reads) {
        link_.send(calibration::read_message(request), request.reply);
    }
    const bool complete = read_maps(opening);
    if (!complete) {
        link_.resume_polling(short_wait);
        if (!replaced(opening)) {
            close();
        }
        return;
    }
    form_.show_map_type[0].set_checked(true);
    shade_all();
    form_.Command3d1.set_enabled(true);
    form_.form.set_enabled(true);
    allow_editing(true);
    loading_maps_ = false;
    form_.inj_map.set_focus();
    show_pending_count();
    link_.resume_polling(short_wait);
}

void BasicMapping::prepare_window() {
    clear_all_entries();
    for (platform::Grid* grid : form_.grids) {
        grid->set_row_height(0, 0);
        grid->set_column_width(0, 0);
        for (int column = 1; column <= grid->columns(); ++column) {
            grid->set_column_width(column, column_width);
        }
    }
    label_map_axis(0);
    for (int i = 0; i < 9; ++i) {
        const double rpm = i / 8.0 * static_cast<double>(scales_.full_scale_rpm);
        form_.Label6[static_cast<std::size_t>(i)].set_text(std::to_string(static_cast<long>(rpm)));
    }
    if (state_.demo_mode) {
        form_.ecu_pgm[0].confirm("10.200");
        form_.ecu_pgm[1].confirm("-.525");
        form_.tps_rpm.confirm("300");
    } else {
        form_.ecu_pgm[0].set_text("");
        form_.ecu_pgm[1].set_text("");
        form_.tps_rpm.set_text("");
    }
    form_.show_map_type[0].set_checked(true);
    form_.inj_map.set_visible(true);
    ports_.waiting.process_events();
}

bool BasicMapping::read_maps(int opening) {
    for (std::size_t n = 0; n < map_rows.size(); ++n) {
        form_.show_map_type[n].set_checked(true);
        if (!read_map(n, opening)) {
            return false;
        }
    }
    return true;
}

// The ticks come while a reply is awaited, so that painting the cells takes no time from the line.
bool BasicMapping::read_map(std::size_t map, int opening) {
    const Repaint repaint(*form_.grids[map]);
    platform::Grid* const below = std::exchange(filling_, form_.grids[map]);
    paint_timer_->set_running(true);
    const std::string title = "Reading " + std::string(map_rows[map].name) + ", block ";
    const bool complete = link_.read_blocks(
        calibration::read_32, map_rows[map].table->base, blocks_of_map,
        [&](int block) {
            progress_ = title + std::to_string(block + 1) + " of " + std::to_string(blocks_of_map);
            if (block == 0) {
                form_.map_status.set_text(progress_);
            }
        },
        [&] { return exit_requested_ || replaced(opening); });
    filling_ = below;
    paint_timer_->set_running(below != nullptr);
    return complete;
}

// What is typed into a map that is being read would be overwritten, or lose its yellow to the shading behind the read.
void BasicMapping::allow_editing(bool allowed) {
    form_.Command3d2.set_enabled(allowed);
    for (platform::Grid* grid : form_.grids) {
        grid->set_locked(!allowed);
    }
    for (platform::TextBox* box : {&form_.ecu_pgm[0], &form_.ecu_pgm[1], &form_.tps_rpm}) {
        box->set_enabled(allowed);
    }
    for (platform::MenuItem* item : {&form_.menuresetmap_fuel, &form_.menuresetmap_Ign, &form_.menu_autotune}) {
        item->set_enabled(allowed);
    }
}

void BasicMapping::close() {
    exit_requested_ = true;
    form_.form.unload();
}

void BasicMapping::unloading() {
    exit_requested_ = true; // also when another view's menu item or the window's own button closed it
    if (state_.comm_aborted) {
        clear_all_entries();
        ++opening_; // an Update under way must not send what is no value
    }
    window_activated_ = false;
    loading_maps_ = false;
    surface_window_.hide();
    if (selection_.close_modifier) {
        selection_.close_modifier();
    }
    navigation_.view_closed(form_.form);
}

void BasicMapping::clear_all_entries() {
    for (platform::TextBox* box : {&form_.ecu_pgm[0], &form_.ecu_pgm[1], &form_.tps_rpm}) {
        box->set_back_colour(platform::pending);
    }
    for (std::size_t n = 0; n < map_rows.size(); ++n) {
        if (state_.demo_mode) {
            confirm_all(*form_.grids[n], map_rows[n].default_text);
        } else {
            blank(*form_.grids[n]);
        }
    }
}

// -- Update

// The walk runs to its end though the window be closed under it, for the tuner asked for all of it; only a new opening,
// which reads everything anew, or a lost link ends it. Asked for again meanwhile it walks once more before the maps are
// shaded.
void BasicMapping::update_changed_entries() {
    if (updating_) {
        update_again_ = true;
        return;
    }
    updating_ = true;
    int opening = opening_;
    link_.pause_polling(short_wait);
    do {
        update_again_ = false;
        opening = opening_;
        write_pending(opening);
    } while (update_again_);
    updating_ = false;
    if (!replaced(opening)) {
        shade_behind_update();
        show_pending_count();
        redraw_graph();
    }
    link_.resume_polling(short_wait);
}

void BasicMapping::write_pending(int opening) {
    not_taken_ = 0;
    write_box(parameter("FUEL_MX"), form_.ecu_pgm[0], opening);
    write_box(parameter("FUEL_B"), form_.ecu_pgm[1], opening);
    write_box(parameter("TPS_RPM"), form_.tps_rpm, opening);
    for (std::size_t n = 0; n < map_rows.size(); ++n) {
        write_map(n, opening);
    }
}

void BasicMapping::write_box(const calibration::Parameter& row, platform::TextBox& box, int opening) {
    if (replaced(opening) || !box.is_pending()) {
        return;
    }
    const auto entry = calibration::raw_from_entry(row, box.text(), scales_);
    if (entry.refusal.empty()) {
        link_.send(calibration::write_message(row, 0, entry.raw), row.write.reply);
        note_not_taken();
        note_pending();
    } else {
        ++not_taken_;
        ports_.dialogs.say(entry.refusal);
    }
}

void BasicMapping::write_map(std::size_t map, int opening) {
    const calibration::Table& row = *map_rows[map].table;
    for_each_pending(
        *form_.grids[map],
        [&](int i, std::string_view text) {
            behind_update_[map][static_cast<std::size_t>(i)] = false;
            const auto entry = calibration::raw_from_entry(row, text, scales_);
            if (entry.refusal.empty()) {
                link_.write_cell(row.base + i, entry.raw);
                note_not_taken();
                note_pending();
            } else {
                ++not_taken_;
                ports_.dialogs.say(entry.refusal);
            }
        },
        [&] { return !replaced(opening); });
}

// Shading takes the yellow of a cell that was refused or had no reply, but not of one that the walk did not see.
void BasicMapping::shade_behind_update() {
    std::vector<std::pair<std::size_t, int>> still_pending;
    for (std::size_t n = 0; n < map_rows.size(); ++n) {
        for_each_pending(*form_.grids[n], [&](int i, std::string_view) {
            if (behind_update_[n][static_cast<std::size_t>(i)]) {
                still_pending.emplace_back(n, i);
            }
        });
        behind_update_[n].fill(false);
    }
    shade_all();
    for (const auto& [n, i] : still_pending) {
        platform::Grid& grid = *form_.grids[n];
        grid.set_cell_back(row_of(grid, i), column_of(grid, i), platform::pending);
    }
}

void BasicMapping::note_not_taken() {
    if (!state_.demo_mode && (state_.comm_aborted || !state_.comm_ready || !state_.reply_accepted)) {
        ++not_taken_;
    }
}

void BasicMapping::note_pending() {
    if (!count_posted_) {
        count_posted_ = true;
        ports_.timers.post([this] {
            count_posted_ = false;
            show_pending_count();
        });
    }
}

void BasicMapping::show_pending_count() {
    if (loading_maps_) {
        return; // the label tells how far the read is
    }
    int count = 0;
    for (const platform::TextBox* box : {&form_.ecu_pgm[0], &form_.ecu_pgm[1], &form_.tps_rpm}) {
        count += box->is_pending() ? 1 : 0;
    }
    for (const platform::Grid* grid : form_.grids) {
        count += pending_cells(*grid);
    }
    const auto values = [](int n) { return n == 1 ? "1 value" : std::to_string(n) + " values"; };
    if (state_.comm_aborted) {
        form_.map_status.set_text("Aborted: nothing is sent until a view is opened");
    } else if (not_taken_ == 0) {
        form_.map_status.set_text((count == 0 ? "No values" : values(count)) + " pending");
    } else if (count == 0) { // the shading took their yellow
        form_.map_status.set_text(values(not_taken_) + (not_taken_ == 1 ? " was" : " were") +
                                  " not taken by the controller");
    } else {
        form_.map_status.set_text(values(count) + " pending, " + std::to_string(not_taken_) + " not taken");
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

void BasicMapping::cell_changed(std::size_t map, int row, int column) {
    form_.grids[map]->set_cell_back(row, column, platform::pending);
    if (updating_) {
        behind_update_[map][static_cast<std::size_t>(index_of(*form_.grids[map], row, column))] = true;
    }
    note_pending();
    redraw_graph();
}

void BasicMapping::redraw_graph() {
    if (surface_window_.visible() && !loading_maps_ && !redraw_posted_) {
        redraw_posted_ = true;
        ports_.timers.post([this] {
            redraw_posted_ = false;
            if (surface_window_.visible() && !loading_maps_) {
                show_graph(static_cast<std::size_t>(map_view_index_));
            }
        });
    }
}

void BasicMapping::reset_map(std::size_t map, std::string_view question) {
    if (ask_caution(ports_.dialogs, question)) {
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
    const double span = pressure ? scales_.map_span : 100.0F;
    const double base = pressure ? scales_.map_base : 0.0F;
    for (int i = 0; i < 17; ++i) {
        const auto load = static_cast<long>(i / 16.0 * span + base);
        form_.Label5[static_cast<std::size_t>(i)].set_text(std::to_string(load));
    }
    form_.Map_dims[0].set_text(pressure ? "kPa" : "% TPS");
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
