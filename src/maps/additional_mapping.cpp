#include "maps/additional_mapping.h"

#include "maps/correction_axes.h"
#include "platform/display_mask.h"

#include <cmath>
#include <limits>

namespace ecu::maps {

using calibration::table;
using platform::KeyPress;
using platform::masked;
namespace key = platform::key;

namespace {

constexpr Waits update_waits{.before = 0.2F, .after = 0.2F};
constexpr std::string_view sample = "1.000"; // of every value in demo mode
constexpr int column_width = 38;
constexpr std::string_view question = "this function will overwrite the table, continue?";
constexpr std::string_view not_fitted = "The controller does not have this function.";

constexpr KeyStep curve_step{.step = 0.015625, .minimum = 0, .maximum = 3.984, .mask = "#.000"};
constexpr KeyStep target_step{
    .step = 0.01, .minimum = 0, .maximum = std::numeric_limits<double>::infinity(), .mask = "##.00"};

// Up and Down lead through these, one below the other.
constexpr std::array<std::string_view, 3> stepped_curves{"CLTM", "MATM", "AUXM"};

// The order in which all graphs are drawn: not that of the reads.
constexpr std::array<std::string_view, 14> drawing_order{"CLTM", "MATM", "BARG", "AUXM", "ACCC", "IGNM", "IGNR",
                                                         "IGNT", "IGNC", "IGNA", "BARI", "DWEL", "BATD", "IDLE"};

constexpr float least_advance = -16; // the scale of all graphs of ignition; the others take that of their values
constexpr float most_advance = 48;
constexpr std::size_t ignition_page = 1;

constexpr calibration::ReadRequest scales_request = calibration::read_request('C');

void mark(platform::Label& label, int pending) {
    label.set_text(pending == 0 ? "" : std::to_string(pending) + " pending");
    label.set_back_colour(pending == 0 ? std::nullopt : std::optional(platform::pending));
}

} // namespace

AdditionalMapping::AdditionalMapping(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                                     const calibration::Scales& scales, const messages::EcuLiveData& live,
                                     Frm2d& frm_2d, Legend legend, shell::Navigation& navigation,
                                     BlockSelection& selection, Graphing& graphing, MapCellColours& map_cell_colours)
    : ports_(ports), state_(state), scales_(scales), live_(live), form_(frm_2d), legend_(legend), selection_(selection),
      graphing_(graphing), map_cell_colours_(map_cell_colours),
      editor_(ports, state, comm, scales, navigation,
              {.form = frm_2d.form,
               .title = "Additional Mapping",
               .update_button = frm_2d.update_button,
               .exit_button = frm_2d.exit_button,
               .status = frm_2d.map_status,
               .update_waits = update_waits,
               .locks = false, // it would enable boxes whose function the controller does not have
               .prepare = [this] { prepare_window(); },
               .read = [this] { return read_everything(); },
               .opened =
                   [this] {
                       draw_everything();
                       lead_to_page(0);
                   },
               .allow = [this](bool allowed) { allow_editing(allowed); },
               .walked = [this] { draw_everything(); },
               .redraw = [this] { draw_shown_page(); },
               .ready =
                   [this] {
                       show_pending_by_page();
                       focus_shown_page();
                   },
               .leaving =
                   [this] {
                       form_.map_tabs.set_current(0); // which shows throughout the next opening
                       if (selection_.close_modifier) {
                           selection_.close_modifier();
                       }
                   },
               .read_again = &frm_2d.read_again}) {
    form_.menufileexit.clicked = [this] { editor_.close(); };
    form_.menuupdate.clicked = [this] { form_.update_button.press(); };
    form_.menureset.clicked = [this] { offer_resets(); };
    form_.read_again.clicked = [this] { editor_.read_again(); };
    form_.map_tabs.changed = [this] { draw_shown_page(); };
    for (const CorrectionCurve& curve : correction_curves) {
        wire_curve(curve);
    }
    wire_target_table();
    wire_surface();
}

// -- Wiring, in the order in which Update walks

void AdditionalMapping::wire_curve(const CorrectionCurve& curve) {
    Frm2d::Nine& boxes = form_.*curve.boxes;
    editor_.add(*curve.table, boxes,
                {.group = Frm2d::tab_captions.at(curve.page), .demo = sample, .place = [this, &curve](int, int index) {
                     const platform::Label& axis = (form_.*curve.axis)[static_cast<std::size_t>(index)];
                     return std::string(curve.title) + ", " + axis.text() + " " + std::string(curve.unit);
                 }});
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        boxes[i].key_down = [this, &curve, i](KeyPress& press) { key_in_box(curve, i, press); };
        if (curve.shows_focus) {
            colour_by_focus(boxes[i]);
        }
    }
    (form_.*curve.graph).resized = [this, &curve] {
        if (!editor_.opening()) {
            draw_bars(curve);
        }
    };
    (form_.*curve.reset).clicked = [this, &curve] { reset_curve(curve); };
}

void AdditionalMapping::wire_target_table() {
    editor_.add(table("EGOL"), form_.lambda_sp_table,
                {.group = Frm2d::tab_captions.at(target_page), .demo = sample, .place = [this](int row, int column) {
                     const std::string& load = form_.Label5[static_cast<std::size_t>(9 - row)].text();
                     return load + " kPa, " + form_.Label7[static_cast<std::size_t>(column - 1)].text() + " rpm";
                 }});
    wire_grid(form_.lambda_sp_table, {.block_table_id = surface::lambda, .step = target_step}, selection_,
              [this] { form_.update_button.press(); });
    form_.menuresetegosetpoint.clicked = [this] { reset_target_table(); };
    form_.form.on_load = [this] {
        for (int column = 1; column <= form_.lambda_sp_table.columns(); ++column) {
            form_.lambda_sp_table.set_column_width(column, column_width);
        }
    };
}

void AdditionalMapping::wire_surface() {
    const auto draw = [this] {
        if (!editor_.opening()) {
            draw_lambda_surface();
        }
    };
    form_.ego_h_perspective.changed = draw;
    form_.ego_v_perspective.changed = draw;
    form_.ego_sp_graph.resized = draw;
}

void AdditionalMapping::key_in_box(const CorrectionCurve& curve, std::size_t index, KeyPress& press) {
    if (press.code == key::enter) {
        press.code = 0;
        form_.update_button.press();
        return;
    }
    if (curve.keys != CurveKeys::stepped) {
        return;
    }
    Frm2d::Nine& boxes = form_.*curve.boxes;
    if (step_box(boxes[index], curve_step, press) || move_along({boxes.begin(), boxes.end()}, index, press) ||
        press.shift || press.ctrl || (press.code != key::up && press.code != key::down)) {
        return;
    }
    const auto* const here = std::ranges::find(stepped_curves, curve.table->key);
    const bool up = press.code == key::up;
    press.code = 0;
    if (up && here != stepped_curves.begin()) {
        (form_.*curve_of(*(here - 1)).boxes)[0].set_focus();
    } else if (!up && here + 1 != stepped_curves.end()) {
        (form_.*curve_of(*(here + 1)).boxes)[0].set_focus();
    }
}

// -- Opening

void AdditionalMapping::prepare_window() {
    form_.map_tabs.set_current(0);
    form_.lambda_sp_table.set_row_height(0, 0);
    form_.lambda_sp_table.set_column_width(0, 0);
    for (platform::Label& label : form_.tab_status) {
        mark(label, 0);
    }
    for (const CorrectionCurve& curve : correction_curves) { // the last opening's curves are no values of this one
        (form_.*curve.graph).clear();
        (form_.*curve.graph).refresh();
    }
    form_.ego_sp_graph.clear();
    form_.ego_sp_graph.refresh();
    form_.inj_pw.set_text("");
    form_.ign_deg.set_text("");
}

bool AdditionalMapping::read_everything() {
    if (!editor_.ask(scales_request)) {
        return false;
    }
    label_correction_axes(form_, scales_);
    for (const std::string_view key : reading_order) {
        const CorrectionCurve& curve = curve_of(key);
        lead_to_page(curve.page);
        if (!editor_.read_table(*curve.table, calibration::read_9, curve.title)) {
            return false;
        }
    }
    return editor_.read_table(table("EGOL"), calibration::read_27, "Lambda Targets");
}

// An opening leads through the pages as it reads them; a second read leaves the one that the user looks at.
void AdditionalMapping::lead_to_page(std::size_t page) {
    if (!editor_.reading_again()) {
        form_.map_tabs.set_current(static_cast<int>(page));
    }
}

void AdditionalMapping::focus_shown_page() {
    const auto shown = static_cast<std::size_t>(form_.map_tabs.current());
    for (const std::string_view key : reading_order) {
        const CorrectionCurve& curve = curve_of(key);
        if (curve.page != shown) {
            continue;
        }
        Frm2d::Nine& boxes = form_.*curve.boxes;
        if (const auto box = std::ranges::find_if(boxes, &platform::TextBox::enabled); box != boxes.end()) {
            box->set_focus();
            return;
        }
    }
}

// The pages as a whole take no entry while they are read; a box keeps what the controller's functions allow it.
void AdditionalMapping::allow_editing(bool allowed) {
    form_.map_tabs.set_enabled(allowed);
    form_.lambda_sp_table.set_locked(!allowed);
    form_.menureset.set_enabled(allowed);
}

void AdditionalMapping::open_anew() {
    state_.drop_view_requests();
    state_.request_view(link::ViewRequest::additional_mapping);
    editor_.close();
}

// -- Resetting

void AdditionalMapping::offer_resets() {
    for (const CorrectionCurve& curve : correction_curves) {
        shell::offer(form_.*curve.reset, (form_.*curve.boxes)[0].enabled(), not_fitted);
    }
}

void AdditionalMapping::reset_curve(const CorrectionCurve& curve) {
    if (!(form_.*curve.boxes)[0].enabled()) { // the controller does not have this function
        return;
    }
    if (ask_caution(ports_.dialogs, question)) {
        for (platform::TextBox& box : form_.*curve.boxes) {
            box.set_text(curve.reset_text);
        }
    }
}

void AdditionalMapping::reset_target_table() {
    if (ask_caution(ports_.dialogs, question)) {
        write_all(form_.lambda_sp_table, masked(scales_.lambda_to_display(1.0F), "#0.00"));
    }
}

// -- Graphs and what is pending

void AdditionalMapping::shade_lambda_table(float low, float high) {
    shade_map(form_.lambda_sp_table, legend_, map_cell_colours_.lambda, low, high);
}

void AdditionalMapping::draw_bars(const CorrectionCurve& curve) {
    const bool ignition = curve.page == ignition_page;
    float low = ignition ? least_advance : 0;
    float high = ignition ? most_advance : 0;
    const Frm2d::Nine& boxes = form_.*curve.boxes;
    platform::Picture& graph = form_.*curve.graph;
    draw_table_bars({boxes.begin(), boxes.end()}, graph, low, high);
    graph.set_text(masked(low, curve.table->mask) + " to " + masked(high, curve.table->mask));
}

void AdditionalMapping::draw_all_table_bars() {
    for (const std::string_view key : drawing_order) {
        draw_bars(curve_of(key));
    }
}

void AdditionalMapping::draw_lambda_surface() { graphing_.draw_surface(surface::lambda); }

void AdditionalMapping::draw_everything() {
    shade_lambda_table(0, 0);
    draw_lambda_surface();
    draw_all_table_bars();
}

// While a value is typed; the other pages follow when they are shown.
void AdditionalMapping::draw_shown_page() {
    if (editor_.opening()) {
        return;
    }
    const auto page = static_cast<std::size_t>(form_.map_tabs.current());
    for (const CorrectionCurve& curve : correction_curves) {
        if (curve.page == page) {
            draw_bars(curve);
        }
    }
    if (page == target_page) {
        draw_lambda_surface();
    }
    show_pending_by_page();
}

void AdditionalMapping::show_pending_by_page() {
    for (const GroupCount& count : editor_.pending_by_group()) {
        const auto page = std::ranges::find(Frm2d::tab_captions, count.group) - Frm2d::tab_captions.begin();
        mark(form_.tab_status[static_cast<std::size_t>(page)], count.pending);
    }
}

void AdditionalMapping::refresh_live() {
    form_.inj_pw.set_text(masked(live_.injector_pw * 1000, "0.000"));
    form_.ign_deg.set_text(masked(std::abs(live_.ignition_timing), "0.00") + (live_.ignition_timing < 0 ? "A" : "B"));
}

} // namespace ecu::maps
