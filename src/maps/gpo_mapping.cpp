#include "maps/gpo_mapping.h"

#include "platform/display_mask.h"

#include <limits>

namespace ecu::maps {

using calibration::parameter;
using calibration::read_request;
using calibration::table;
using platform::masked;
using platform::round_to_even;

namespace {

constexpr int column_width = 43;
constexpr int cells_per_side = 9;

constexpr const calibration::Parameter& modes = parameter("GPOS");
constexpr const calibration::Parameter& flags = parameter("BOFG");
constexpr auto& pages = FrmSup::tab_captions; // what the values of a page are counted under
constexpr std::int32_t invert_flag = 1;
constexpr std::int32_t as_pwm_flag = 2;

// What the two maps of a channel differ in.
struct MapRow {
    const calibration::Table* table;
    std::string_view name;
    int block_table_id;
};
constexpr std::array<MapRow, 4> output_maps{{{&table("GPO1"), "GPO map 1", 1},
                                             {&table("GPO2"), "GPO map 2", 2},
                                             {&table("GPO3"), "GPO map 3", 3},
                                             {&table("GPO4"), "GPO map 4", 4}}};
constexpr std::array<MapRow, 4> boost_maps{{{&table("BMP0"), "boost map 1", 10},
                                            {&table("BMP1"), "boost map 2", 11},
                                            {&table("BMP2"), "boost map 3", 12},
                                            {&table("BMP3"), "boost map 4", 13}}};
constexpr KeyStep cell_step{
    .step = 0.1, .minimum = 0, .maximum = std::numeric_limits<double>::infinity(), .mask = "##0.00"};

// What demo mode shows.
constexpr std::string_view demo_output = "0.0";
constexpr std::string_view demo_boost = "100.0";
constexpr std::string_view demo_temperature = "95";
constexpr std::string_view demo_other = "0";

} // namespace

GpoMapping::GpoMapping(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                       const calibration::Scales& scales, const messages::EcuLiveData& live,
                       const calibration::CalibrationImage& image, messages::ParameterControls& controls,
                       FrmSup& frm_sup, shell::Navigation& navigation, BlockSelection& selection)
    : ports_(ports), state_(state), scales_(scales), live_(live), image_(image), controls_(controls), form_(frm_sup),
      editor_(ports, state, comm, scales, navigation,
              {.form = frm_sup.form,
               .title = "General Purpose Output Driver Mapping",
               .update_button = frm_sup.update_button,
               .exit_button = frm_sup.exit_button,
               .status = frm_sup.map_status,
               .opening_waits = {.before = 0.1F, .after = 0},
               .update_waits = {.before = 0.1F, .after = 0.1F},
               .prepare = [this] { prepare_window(); },
               .read = [this] { return read_everything(); },
               .allow =
                   [this](bool allowed) {
                       allowed_ = allowed;
                       lock_what_is_unread();
                   },
               .redraw = [this] { show_pages(); },
               .ready =
                   [this] {
                       show_pages();
                       const auto n = static_cast<std::size_t>(form_.GPO_tab.current());
                       (form_.gpo_map_holder[n].visible() ? form_.GPO_tbl[n] : form_.boost_gpo[n]).set_focus();
                   },
               .leaving =
                   [&selection] {
                       if (selection.close_modifier) {
                           selection.close_modifier();
                       }
                   },
               .read_again = &frm_sup.read_again}) {
    form_.menufileexit.clicked = [this] { editor_.close(); };
    form_.menuupdate.clicked = [this] { form_.update_button.press(); };
    // The question is asked, and nothing follows from its answer.
    form_.menuresetmap.clicked = [this] {
        ask_caution(ports_.dialogs, "this function will overwrite the table, continue?");
    };
    form_.GPO_tab.changed = [this] { move_markers(); };
    add_items();
    for (std::size_t n = 0; n < channels; ++n) {
        wire_switches(n);
        wire_tables(n, selection);
    }
    lock_what_is_unread();
    relabel_gpo_axes();
}

// -- What the user changes

void GpoMapping::wire_switches(std::size_t n) {
    for (std::size_t k = 0; k < form_.gpo_mode[n].size(); ++k) {
        form_.gpo_mode[n][k].clicked = [this, n, k] {
            form_.gpo_mode[n][0].set_fore_colour(platform::pending);
            gpo_mode_byte_[n] =
                static_cast<int>(k) + (form_.dont_interpolate[n].checked() ? calibration::dont_interpolate_bit : 0);
            relabel_gpo_axes();
            move_markers();
            editor_.changed();
        };
    }
    form_.dont_interpolate[n].clicked = [this, n] {
        form_.gpo_mode[n][0].set_fore_colour(platform::pending);
        editor_.changed();
    };
    form_.boost_ctrl_invert[n].clicked = [this, n] {
        form_.boost_ctrl_invert[n].set_fore_colour(platform::pending);
        editor_.changed();
    };
    form_.use_as_pwm[n].clicked = [this, n] {
        form_.boost_ctrl_invert[n].set_fore_colour(platform::pending);
        relabel_gpo_axes();
        move_markers();
        editor_.changed();
    };
}

void GpoMapping::wire_tables(std::size_t n, BlockSelection& selection) {
    const auto wire = [&](platform::Grid& grid, const MapRow& map) {
        wire_grid(grid, {.block_table_id = map.block_table_id, .step = cell_step}, selection,
                  [this] { form_.update_button.press(); });
        grid.set_row_height(0, 0);
        for (int column = 0; column <= grid.columns(); ++column) {
            grid.set_column_width(column, column == 0 ? 0 : column_width);
        }
    };
    wire(form_.GPO_tbl[n], output_maps[n]);
    wire(form_.boost_gpo[n], boost_maps[n]);
}

// In the order in which Update walks them.
bool GpoMapping::span_known() const { return state_.demo_mode || image_.known(parameter("FS_RPM")); }

void GpoMapping::add_items() {
    const auto page = [](std::size_t n) { return pages[n]; };
    // Nothing to be entered: what the pressures of this window hang on.
    editor_.add(CustomItem{.pending = [] { return 0; },
                           .send = [](Walk&) {},
                           .unread = [this] { return span_known() ? 0 : 1; },
                           .row = &parameter("FS_RPM")},
                {.group = page(0)});
    for (std::size_t i = 0; i < channels; ++i) {
        const int element = static_cast<int>(i);
        editor_.add(parameter("GPOV"), element, form_.cool_rly_temp[i], {.group = page(i), .demo = demo_temperature});
        editor_.add(parameter("RPMS"), element, form_.rpm_switch[i], {.group = page(i), .demo = demo_other});
    }
    for (std::size_t n = 0; n < channels; ++n) {
        editor_.add(mode_item(n), {.group = page(n)});
    }
    for (std::size_t n = 0; n < channels; ++n) {
        editor_.add(*output_maps[n].table, form_.GPO_tbl[n],
                    {.group = page(n), .demo = demo_output, .place = [this, n](int row, int column) {
                         return cell_place(n, false, row, column);
                     }});
    }
    for (std::size_t n = 0; n < channels; ++n) {
        editor_.add(*boost_maps[n].table, form_.boost_gpo[n],
                    {.group = page(n), .demo = demo_boost, .place = [this, n](int row, int column) {
                         return cell_place(n, true, row, column);
                     }});
    }
    for (std::size_t i = 0; i < channels; ++i) {
        const auto add = [&](const calibration::Parameter& row, FrmSup::Boxes& boxes) {
            editor_.add(row, static_cast<int>(i), boxes[i], {.group = page(i), .demo = demo_other});
        };
        add(parameter("BO_P"), form_.boost_p);
        add(parameter("BO_I"), form_.boost_i);
        add(parameter("BO_D"), form_.boost_d);
        add(parameter("BOEN"), form_.boost_enable_press);
        add(parameter("BOIS"), form_.boost_integ_preset);
        add(parameter("BORT"), form_.boost_loop_rate);
        editor_.add(flags_item(i), {.group = page(i)});
    }
}

CustomItem GpoMapping::mode_item(std::size_t n) {
    return {.pending = [this, n] { return mode_pending(n) ? 1 : 0; },
            .send = [this, n](Walk& walk) { send_switches(walk, modes, n, chosen_mode_byte(n)); },
            .open =
                [this, n](bool demo) {
                    if (!demo) { // an earlier reading would look as if it were this controller's
                        clear_choice(n);
                        form_.dont_interpolate[n].set_checked(false);
                        gpo_mode_byte_[n] = 0;
                    } else if (chosen(form_.gpo_mode[n]) < 0) {
                        form_.gpo_mode[n][0].set_checked(true);
                    }
                    form_.gpo_mode[n][0].set_fore_colour(platform::black);
                    mode_read_[n] = demo;
                },
            .unread = [this, n] { return mode_read_[n] ? 0 : 1; },
            .row = &modes};
}

// What is clicked while the message is under way is a new choice, which its echo must not take back.
void GpoMapping::send_switches(Walk& walk, const calibration::Parameter& row, std::size_t n, std::int32_t raw) {
    const int channel = static_cast<int>(n);
    controls_.begin_sending(row, channel, raw);
    const editing::Fate fate = walk.link.write(calibration::write_message(row, channel, raw), row.write.reply);
    controls_.end_sending();
    walk.note_fate(fate);
}

CustomItem GpoMapping::flags_item(std::size_t n) {
    return {.pending = [this, n] { return flags_pending(n) ? 1 : 0; },
            .send =
                [this, n](Walk& walk) {
                    const std::int32_t raw = (form_.boost_ctrl_invert[n].checked() ? invert_flag : 0) +
                                             (form_.use_as_pwm[n].checked() ? as_pwm_flag : 0);
                    send_switches(walk, flags, n, raw);
                },
            .open =
                [this, n](bool demo) {
                    if (!demo) {
                        form_.boost_ctrl_invert[n].set_checked(false);
                        form_.use_as_pwm[n].set_checked(false);
                    }
                    form_.boost_ctrl_invert[n].set_fore_colour(platform::black);
                    flags_read_[n] = demo;
                },
            .unread = [this, n] { return flags_read_[n] ? 0 : 1; },
            .row = &flags};
}

void GpoMapping::clear_choice(std::size_t n) {
    for (platform::OptionButton& option : form_.gpo_mode[n]) {
        option.set_checked(false);
    }
}

// What is clicked beside an unknown half would look pending and never go out; and a boost cell whose unit is unknown
// cannot be entered.
void GpoMapping::lock_what_is_unread() {
    for (std::size_t n = 0; n < channels; ++n) {
        for (platform::OptionButton& option : form_.gpo_mode[n]) {
            option.set_enabled(allowed_ && mode_read_[n]);
        }
        form_.dont_interpolate[n].set_enabled(allowed_ && mode_read_[n]);
        form_.boost_ctrl_invert[n].set_enabled(allowed_ && flags_read_[n]);
        form_.use_as_pwm[n].set_enabled(allowed_ && flags_read_[n]);
        form_.boost_gpo[n].set_locked(!allowed_ || !flags_read_[0] || !span_known());
    }
}

// A mode that no option stands for is the controller's, and stays with it.
std::int32_t GpoMapping::chosen_mode_byte(std::size_t n) const {
    const int option = chosen(form_.gpo_mode[n]);
    const int mode = option < 0 ? gpo_mode_byte_[n] & calibration::output_mode_mask : option;
    return mode + (form_.dont_interpolate[n].checked() ? calibration::dont_interpolate_bit : 0);
}

std::string GpoMapping::cell_place(std::size_t n, bool boost, int row, int column) const {
    const auto x = static_cast<std::size_t>(column - 1);
    const auto y = static_cast<std::size_t>(cells_per_side - row);
    if (boost) {
        return form_.boost_x_text[n].text() + " " + form_.GPO_boost_X_lbl[n][x].text() + ", " +
               form_.boost_y_text[n].text() + " " + form_.GPO_boost_Y_lbl[n][y].text();
    }
    const ModeAxes axes = mode_axes(gpo_mode_byte_[n], scales_);
    if (!axes.has_map()) {
        return "row " + std::to_string(row) + ", column " + std::to_string(column);
    }
    const std::string upward = form_.gpo_y_text[n].text() + " " + form_.GPO_Y_lbl[n][y].text();
    return axes.one_column() ? upward : form_.gpo_x_text[n].text() + " " + form_.GPO_X_lbl[n][x].text() + ", " + upward;
}

// -- Opening

void GpoMapping::prepare_window() {
    for (std::size_t n = 0; n < channels; ++n) {
        for (platform::Label* label :
             {&form_.gpo_words[n], &form_.gpo_now[n], &form_.boost_words[n], &form_.pending_on_page[n]}) {
            label->set_text("");
        }
    }
    relabel_gpo_axes();
}

bool GpoMapping::read_everything() {
    const auto read_maps = [this](const std::array<MapRow, 4>& maps) {
        return std::ranges::all_of(
            maps, [this](const MapRow& map) { return editor_.read_table(*map.table, calibration::read_27, map.name); });
    };
    editor_.show_progress("Reading modes and switches");
    if (!editor_.ask(read_request('C')) || !editor_.ask(read_request(170)) || !editor_.ask(read_request(172)) ||
        !editor_.ask(read_request(225))) {
        return false;
    }
    relabel_gpo_axes();
    if (!read_maps(output_maps)) {
        return false;
    }
    if (!span_known()) { // pressures of another sensor's span would be the wrong ones
        return true;
    }
    if (!editor_.ask(read_request(217))) {
        return false;
    }
    // Without the flag no one knows what the bytes mean; they wait for the second read that brings it.
    return !(flags_read_[0] || state_.demo_mode) || read_maps(boost_maps);
}

// -- Axes

void GpoMapping::relabel_gpo_axes() {
    for (std::size_t n = 0; n < channels; ++n) {
        label_outputs(n);
        label_boost(n);
    }
}

void GpoMapping::label_outputs(std::size_t n) {
    const ModeAxes axes = mode_axes(gpo_mode_byte_[n], scales_);
    for (std::size_t i = 0; i < cells_per_side; ++i) {
        const auto step = static_cast<double>(i);
        form_.GPO_Y_lbl[n][i].set_text(masked(step * axes.y_span / 8 + axes.y_base, "##0.0"));
        form_.GPO_X_lbl[n][i].set_text(masked(step * (axes.x_to - axes.x_from) / 8 + axes.x_from, "####0"));
    }
    const int width = axes.one_column() ? 0 : column_width;
    platform::Grid& grid = form_.GPO_tbl[n];
    for (int column = 2; column <= grid.columns(); ++column) {
        if (grid.column_width(column) != width) {
            grid.set_column_width(column, width);
        }
    }
    if (axes.one_column() && grid.active_column() != 1) {
        grid.set_active_cell(grid.active_row(), 1);
    }
    form_.gpo_map_holder[n].set_visible(axes.has_map());
    form_.gpo_y_text[n].set_text(axes.y_title);
    form_.gpo_x_text[n].set_text(axes.x_title);
}

void GpoMapping::label_boost(std::size_t n) {
    const ModeAxes axes = boost_axes(form_.use_as_pwm[n].checked(), scales_);
    const auto whole = [](double value) { return std::to_string(static_cast<long>(value)); };
    for (std::size_t i = 0; i < cells_per_side; ++i) {
        const auto step = static_cast<double>(i);
        form_.GPO_boost_X_lbl[n][i].set_text(whole(step * axes.x_to / 8));
        form_.GPO_boost_Y_lbl[n][i].set_text(whole(step * axes.y_span / 8 + axes.y_base));
    }
    form_.boost_y_text[n].set_text(axes.y_title);
}

void GpoMapping::follow_reply(const calibration::Parameter& row, int i) {
    if (&row == &modes) {
        const auto n = static_cast<std::size_t>(i);
        mode_read_[n] = true;
        if (mode_pending(n)) { // chosen behind the message whose echo this is
            return;
        }
        gpo_mode_byte_[n] = image_.raw(row, i);
        if ((gpo_mode_byte_[n] & calibration::output_mode_mask) > two_wire_idle) {
            clear_choice(n); // an older choice would look as if it were the controller's
        }
    } else if (&row == &flags) {
        flags_read_[static_cast<std::size_t>(i)] = true;
    } else if (&row != &parameter("MAP_TYPE") && &row != &parameter("FS_RPM")) {
        return;
    }
    if (cells_are_duty_ != scales_.boost_as_pwm) {
        cells_are_duty_ = scales_.boost_as_pwm;
        show_boost_cells_anew();
        for (std::size_t n = 0; n < channels; ++n) {
            unit_changed_[n] = pending_cells(form_.boost_gpo[n]) > 0;
        }
    }
    lock_what_is_unread();
    relabel_gpo_axes();
    move_markers();
    editor_.changed();
}

// In their new unit. What is pending is the user's, and what was never read has no unit.
void GpoMapping::show_boost_cells_anew() {
    for (std::size_t n = 0; n < channels; ++n) {
        const calibration::Table& row = *boost_maps[n].table;
        platform::Grid& grid = form_.boost_gpo[n];
        const Repaint repaint(grid);
        for (int i = 0; i < cells_of(grid); ++i) {
            if (grid.cell_back(row_of(grid, i), column_of(grid, i)) == platform::confirmed) {
                grid.confirm_cell(row_of(grid, i), column_of(grid, i),
                                  calibration::shown(row, image_.cell(row.base + i), scales_));
            }
        }
    }
}

// -- What the pages tell

void GpoMapping::show_pages() {
    const auto groups = editor_.pending_by_group();
    for (std::size_t n = 0; n < channels; ++n) {
        form_.gpo_words[n].set_text(mode_read_[n] ? words_of_output(n) : "Not read yet.");
        form_.boost_words[n].set_text(words_of_boost(n));
        const auto group = std::ranges::find(groups, pages[n], &GroupCount::group);
        const int pending = group == groups.end() ? 0 : group->pending;
        form_.pending_on_page[n].set_text(pending == 0 ? "" : std::to_string(pending) + " pending");
    }
}

std::string GpoMapping::words_of_output(std::size_t n) const {
    const int mode = chosen_mode_byte(n) & calibration::output_mode_mask;
    const bool unsent = mode_pending(n) || (mode == coolant_fan && form_.cool_rly_temp[n].is_pending()) ||
                        (mode == rpm_switch_above && form_.rpm_switch[n].is_pending());
    std::string words = unsent ? "Not sent yet: " : "";
    words += output_in_words(mode, form_.dont_interpolate[n].checked(), form_.cool_rly_temp[n].text(),
                             form_.rpm_switch[n].text());
    const int stored = image_.raw(modes, static_cast<int>(n)) & calibration::output_mode_mask;
    if (unsent && !state_.demo_mode && stored != mode) {
        words += " The controller still has " +
                 (stored > two_wire_idle
                      ? "mode " + std::to_string(stored)
                      : "\"" + std::string(FrmSup::mode_captions[static_cast<std::size_t>(stored)]) + "\"") +
                 ".";
    }
    return words;
}

std::string GpoMapping::words_of_boost(std::size_t n) {
    const int pending = pending_cells(form_.boost_gpo[n]);
    unit_changed_[n] = unit_changed_[n] && pending > 0;
    if (!flags_read_[n]) {
        return "Not read yet.";
    }
    std::string words = flags_pending(n) || form_.boost_enable_press[n].is_pending() ? "Not sent yet: " : "";
    words += boost_in_words({.as_pwm = form_.use_as_pwm[n].checked(),
                             .invert = form_.boost_ctrl_invert[n].checked(),
                             .cells_are_duty = scales_.boost_as_pwm,
                             .first_channel = n == 0,
                             .enable_pressure = form_.boost_enable_press[n].text()});
    if (unit_changed_[n]) {
        words += " " + std::to_string(pending) + (pending == 1 ? " pending cell is" : " pending cells are") +
                 " now read as " + (scales_.boost_as_pwm ? "% duty." : "kPa.");
    }
    return words;
}

void GpoMapping::refresh_live() {
    for (std::size_t n = 0; n < channels && !state_.demo_mode; ++n) {
        form_.gpo_now[n].set_text(output_now_in_words(live_.gpo_duty[n], live_.engine_rpm));
    }
    move_markers();
}

void GpoMapping::move_markers() {
    const auto n = static_cast<std::size_t>(form_.GPO_tab.current());
    const int across = round_to_even(form_.supp_x_end.left() - form_.supp_x_beg.left());
    const int upward = round_to_even(form_.supp_y_beg.top() - form_.supp_y_end.top());
    const auto move = [&](const ModeAxes& axes, platform::Shape& x, platform::Shape& y) {
        const double x_place = place_on_axis(axes.x_source, axes.x_from, axes.x_to - axes.x_from, live_);
        const double y_place = place_on_axis(axes.y_source, axes.y_base, axes.y_span, live_);
        x.set_left(form_.supp_x_beg.left() + static_cast<float>(round_to_even(x_place * across)));
        y.set_top(form_.supp_y_beg.top() - static_cast<float>(round_to_even(y_place * upward)));
        x.set_visible(axes.x_source != AxisSource::none);
        y.set_visible(axes.y_source != AxisSource::none);
    };
    move(mode_axes(gpo_mode_byte_[n], scales_), form_.supp_x_ptr, form_.supp_y_ptr);
    move(boost_axes(form_.use_as_pwm[n].checked(), scales_), form_.boost_x_ptr, form_.boost_y_ptr);
}

} // namespace ecu::maps
