#include "autotune/autotune.h"

#include "autotune/log_fields.h"
#include "editing/editing_rules.h"
#include "link/pause.h"
#include "logging/log_file.h"
#include "maps/map_axes.h"
#include "platform/display_mask.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"

#include <cmath>
#include <fstream>

namespace ecu::autotune {

namespace {

constexpr int cells = 256;
constexpr int column_width = 38;
constexpr int fields_read = 34; // of a row's 37; the reader does not skip the others
constexpr std::string_view log_version = "LOG_FILE V1.00.02";

float number_of(std::string_view text) { return static_cast<float>(platform::leading_number(text)); }

bool is_skipped(std::string_view factor) { return factor.empty() || factor == "X" || factor == "x"; }

// Whether the map's cell took the product.
bool apply_factor(const platform::Grid& factors, platform::Grid& map, int n) {
    if (map.cell_unread(editing::row_of(map, n), editing::column_of(map, n))) {
        return false; // there is no value to multiply
    }
    const std::string& factor = editing::text_at(factors, n);
    const float product = number_of(factor) * number_of(editing::text_at(map, n));
    // A product beyond all numbers would read back as 0: no fuel.
    if (!is_skipped(factor) && std::isfinite(product)) {
        editing::write_at(map, n, platform::masked(product, "0.000"));
        return true;
    }
    return false;
}

// "2nd": a second Apply multiplies what the first one left.
std::string ordinal(int n) {
    const bool teens = n / 10 % 10 == 1;
    const int last = n % 10;
    return std::to_string(n) + (teens || last == 0 || last > 3 ? "th" : last == 1 ? "st" : last == 2 ? "nd" : "rd");
}

// What one row leaves for the next.
struct Previous {
    float cpu_t = -1;
    float rpm = 0, lambda = 0, tps = 0, map = 0;
};

float change(float& previous, float value) {
    const float difference = value - previous;
    previous = value;
    return difference;
}

// Not the time between two rows: the comparison of their times as a number, -1 when equal and 0 when not, a negative
// one a day later. So the first row of every log divides by zero.
float time_step(float& previous, float now) {
    float dt = 0;
    if (previous != -1) {
        dt = previous == now ? -1.0F : 0.0F;
        if (dt < 0) {
            dt += 86400;
        }
    }
    previous = now;
    return dt;
}

std::int16_t integer_of(float value) { return static_cast<std::int16_t>(platform::round_to_even(value)); }

void take_field(int number, float value, LogRow& row, Previous& previous) {
    switch (number) {
    case 2:
        row.dt = time_step(previous.cpu_t, value);
        break;
    case 3:
        row.d_rpm = change(previous.rpm, value);
        break;
    case 4:
        row.d_lambda = change(previous.lambda, value);
        break;
    case 6:
        row.d_tps = change(previous.tps, value);
        break;
    case 7:
        row.d_map = change(previous.map, value);
        break;
    case 10:
        row.corr = value;
        break;
    case 25:
        row.ego_sp = value;
        break;
    case 28:
        row.map_c = integer_of(value);
        break;
    case 29:
        row.map_r = value;
        break;
    case 30:
        row.rpm_c = integer_of(value);
        break;
    case 31:
        row.rpm_r = value;
        break;
    case 32:
        row.tps_c = integer_of(value);
        break;
    case 33:
        row.tps_r = value;
        break;
    case 34:
        row.tps_pcnt = value;
        break;
    default:
        break;
    }
}

} // namespace

Autotune::Autotune(const platform::Ports& ports, link::SharedState& state, FrmAutotune& form, maps::Frm3d& frm_3d,
                   const calibration::Scales& scales)
    : ports_(ports), state_(state), form_(form), frm_3d_(frm_3d), scales_(scales) {
    form_.autotune_inj_factors.place = [this](int row, int column) {
        return maps::cell_place(row, column, true, scales_);
    };
    form_.autotune_tps_factors.place = [this](int row, int column) {
        return maps::cell_place(row, column, false, scales_);
    };
    form_.form.on_load = [this] {
        size_grids();
        autotune_reset();
    };
    form_.form.on_close = [this] { leave(); };
    form_.exit_button.clicked = [this] { leave(); };
    form_.apply_to_maps.clicked = [this] { apply_to_maps(); };
    form_.reset_autotune_params.clicked = [this] { autotune_reset(); };
    form_.menu_load_logfile.clicked = [this] { load_logfile(); };
    frm_3d_.menu_autotune.clicked = [this] { open(); };
}

// No polling while the screen shows. An opening read that runs behind it keeps the pause it made.
void Autotune::open() {
    const link::Pause paused(state_);
    frm_3d_.form.hide();
    label_axes();
    form_.form.show_modal();
}

void Autotune::leave() {
    form_.form.hide();
    frm_3d_.form.show();
}

void Autotune::size_grids() {
    for (platform::Grid* grid : {&form_.autotune_inj_factors, &form_.autotune_tps_factors}) {
        grid->set_column_width(0, 0);
        grid->set_row_height(0, 0);
        for (int column = 1; column <= grid->columns(); ++column) {
            grid->set_column_width(column, column_width);
        }
    }
}

void Autotune::label_axes() {
    for (std::size_t i = 0; i < form_.speed_axis.size(); ++i) {
        form_.speed_axis[i].set_text(std::to_string(maps::speed_mark(static_cast<double>(i) / 8, scales_)));
    }
    for (std::size_t i = 0; i < form_.pressure_axis.size(); ++i) {
        const double share = static_cast<double>(i) / 16;
        form_.pressure_axis[i].set_text(std::to_string(maps::load_mark(share, true, scales_)));
        form_.throttle_axis[i].set_text(std::to_string(maps::load_mark(share, false, scales_)));
    }
}

void Autotune::autotune_reset() {
    applied_ = 0;
    form_.applied.set_text("");
    editing::write_all(form_.autotune_inj_factors, "");
    editing::write_all(form_.autotune_tps_factors, "");
    inj_point_count_.fill(0);
    tps_point_count_.fill(0);
    for (Samples* samples : {&inj_point_samples_, &tps_point_samples_}) {
        for (auto& slot : *samples) {
            slot.fill(0);
        }
    }
}

void Autotune::apply_to_maps() {
    const editing::Repaint fuel(frm_3d_.inj_map);
    const editing::Repaint tps(frm_3d_.TPS_map);
    int written = 0;
    for (int n = 0; n < cells; ++n) {
        written += apply_factor(form_.autotune_inj_factors, frm_3d_.inj_map, n) ? 1 : 0;
        written += apply_factor(form_.autotune_tps_factors, frm_3d_.TPS_map, n) ? 1 : 0;
    }
    if (written == 0) {
        form_.applied.set_text("No cell has a factor to apply");
        return;
    }
    ++applied_;
    form_.applied.set_text("Applied to " + std::to_string(written) + (written == 1 ? " cell" : " cells") +
                           (applied_ == 1 ? "" : " (" + ordinal(applied_) + " time)"));
}

bool Autotune::autotune_routine(LogRow& row) {
    for (const float difference : {row.d_map, row.d_rpm, row.d_tps, row.d_lambda}) {
        if (row.dt == 0 || !std::isfinite(difference / row.dt)) {
            return false;
        }
    }
    row.ego_sp = 0.8F;
    editing::write_at(form_.autotune_inj_factors, 0, "");
    editing::write_at(form_.autotune_tps_factors, 0, "");
    return true;
}

// Whatever goes wrong past the version line ends the loader without a word.
void Autotune::load_logfile() {
    const std::string name = ports_.dialogs.open_file({.title = "Load Logfile",
                                                       .default_extension = "csv",
                                                       .filter = "Setup Files (*.csv)|",
                                                       .initial_name = "*.CSV"});
    if (name.empty() || name == "*.CSV") {
        return;
    }
    std::ifstream in(logging::path_of(ports_.folder, name), std::ios::binary);
    std::optional<std::string> line;
    for (int i = 0; i < 3; ++i) {
        line = read_line(in);
        if (!line) {
            return;
        }
    }
    if (*line != log_version) {
        ports_.dialogs.say("Incompatible log file for this version of Autotune");
        return;
    }
    read_line(in);

    LogRow row;
    Previous previous;
    while (!at_end(in)) {
        for (int number = 1; number <= fields_read; ++number) {
            const auto field = read_field(in);
            if (!field) {
                return;
            }
            take_field(number, number_of(*field), row, previous);
        }
        if (!autotune_routine(row)) {
            return;
        }
    }
}

} // namespace ecu::autotune
