#include "views/dashboard.h"

#include "calibration/encoding.h"
#include "link/pause.h"
#include "messages/catalogue.h"
#include "platform/display_mask.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"
#include "views/mixture_text.h"

#include <algorithm>
#include <utility>

namespace ecu::views {

namespace {

using platform::Gauge;
using platform::leading_number;
using platform::masked;
using platform::round_to_even;

constexpr double trim_step = 0.1;
constexpr std::uint8_t timing_to_zero = 165;
constexpr std::uint8_t timing_as_mapped = 0;

// What the opening asks for: the trims, and the limits that the scales hang on.
constexpr auto opening_reads = calibration::read_requests(163, 'C', 'B');

struct Tachometer {
    float up_to_rpm;
    float full_scale;
    float tick_step;
};
constexpr std::array<Tachometer, 7> tachometers{
    {{4000, 4, 0.5F}, {6000, 6, 1}, {8000, 8, 1}, {10000, 10, 1}, {16000, 16, 2}, {24000, 24, 3}, {40000, 40, 5}}};
// Above the table the full scale is in rpm, not thousands: the needle then hardly moves. It has always been so.
constexpr Tachometer beyond{0, 50000, 4};

struct Manifold {
    float sensor_kpa;
    Gauge::Scale scale;
};
constexpr std::array<Manifold, 4> manifolds{{
    {115, {.full_scale = 120, .tick_step = 12, .zone_a_start = 0, .zone_b_start = 110}},
    {255, {.full_scale = 250, .tick_step = 25, .zone_a_start = 110, .zone_b_start = 210}},
    {394, {.full_scale = 400, .tick_step = 40, .zone_a_start = 110, .zone_b_start = 300}},
    {551, {.full_scale = 650, .tick_step = 65, .zone_a_start = 110, .zone_b_start = 410}},
}};

constexpr std::array<float, 3> filter_gains{0.2F, 0.5F, 1.0F};

// Holds a flag up, and gives it back as it was.
class Raised {
public:
    explicit Raised(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;
    ~Raised() { flag_ = before_; }

private:
    bool& flag_;
    bool before_;
};

std::array<Gauge*, 10> gauges(FrmDashboard& form) {
    return {&form.tachometer, &form.manifold_pressure, &form.water_temp,  &form.air_temp,    &form.bat_volts,
            &form.Timing,     &form.GPO_duty[0],       &form.GPO_duty[1], &form.GPO_duty[2], &form.GPO_duty[3]};
}

} // namespace

std::size_t lamp_of(float lambda) {
    const double richness = std::clamp(1.0 / static_cast<double>(lambda) - 0.625, 0.0, 0.975);
    return static_cast<std::size_t>(std::min(round_to_even(richness / 0.375 * 8), 16));
}

Gauge::Scale tachometer_scale(float full_scale_rpm) {
    const auto* const row = std::ranges::find_if(
        tachometers, [&](const Tachometer& candidate) { return full_scale_rpm <= candidate.up_to_rpm; });
    const Tachometer& chosen = row == tachometers.end() ? beyond : *row;
    const double red_line = 920.7 / 1023 * static_cast<double>(full_scale_rpm);
    return {.full_scale = chosen.full_scale,
            .tick_step = chosen.tick_step,
            .zone_a_start = static_cast<float>(red_line * 0.9 / 1000),
            .zone_b_start = static_cast<float>(red_line / 1000)};
}

Dashboard::Dashboard(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                     shell::Navigation& navigation, calibration::Scales& scales, messages::EcuLiveData& live,
                     FrmDashboard& form)
    : ports_(ports), state_(state), comm_(comm), navigation_(navigation), scales_(scales), live_(live), form_(form),
      link_(ports, state, comm, scales), trims_{
                                             {{calibration::parameter("FUEL_MX"), 0, form.ecu_pgm[0], "10.200"},
                                              {calibration::parameter("FUEL_B"), 0, form.ecu_pgm[1], "-.520"},
                                              {calibration::parameter("BASE_DEG"), 0, form.base_offset_deg, "-8.25"}}} {
    wire();
}

void Dashboard::wire() {
    form_.form.on_activate = [this] { activate(); };
    form_.form.on_unload = [this] { leave(); };
    form_.exit_button.clicked = [this] { form_.form.unload(); };
    form_.menu_file_exit.clicked = [this] { form_.form.unload(); };
    form_.update_button.clicked = [this] { update(); };
    form_.menu_Update.clicked = [this] { update(); };
    form_.read_again.clicked = [this] { read_again(); };
    for (editing::BoxItem& trim : trims_) {
        trim.box().changed = [this, &trim] {
            trim.note_changed();
            trim.box().set_back_colour(platform::pending);
            note_changed();
        };
        trim.box().key_down = [this, &box = trim.box()](platform::KeyPress& key) {
            trim_key(box, &box != &form_.base_offset_deg, key);
        };
    }
    link_.show_place = [this](platform::Control& control, int, int) { return show_place(control); };
    link_.on_held = [this](const std::string& entered, const std::string& shown) {
        if (tally_.held++ == 0) {
            tally_.first_held = entered + " is " + shown;
        }
    };
    form_.kill_timing.clicked = [this] {
        const std::uint8_t timing = form_.kill_timing.checked() ? timing_to_zero : timing_as_mapped;
        comm_.poll({messages::session_latch.code, timing, 0, 0}, messages::session_latch.reply);
        tell_held();
    };
    form_.kill_ego.clicked = [this] {
        const messages::Command& command =
            form_.kill_ego.checked() ? messages::oxygen_control_off : messages::oxygen_control_on;
        comm_.poll({command.code}, command.reply);
        tell_held();
    };
    for (std::size_t i = 0; i < form_.menu_opts_tach_filt_num.size(); ++i) {
        form_.menu_opts_tach_filt_num[i].clicked = [this, i] { filter_tachometer(i); };
    }
    for (std::size_t i = 0; i < form_.menu_view_gpo.size(); ++i) {
        form_.menu_view_gpo[i].clicked = [this, i] { view_gpo(i); };
    }
}

void Dashboard::activate() {
    {
        const Raised opening(opening_);
        open();
    }
    show_status();
}

void Dashboard::open() {
    tally_ = {};
    other_controller_ = false;
    form_.form.set_caption("Dashboard" + state_.link_title_suffix);
    ask_controller();
    ports_.wait_seconds(0.1F);
    for (Gauge* gauge : gauges(form_)) {
        gauge->set_back_colour(platform::bright_white);
    }
    ports_.waiting.process_events();
    if (state_.demo_mode) {
        for (editing::BoxItem& trim : trims_) {
            trim.open(true, false);
        }
        scales_.full_scale_rpm = 8000;
    }
    scale_gauges();
    scale_lamps();
    if (form_.form.visible()) { // not if the user left during the waits above
        state_.current_view = link::View::dashboard;
    }
}

void Dashboard::ask_controller() {
    const link::Pause paused(state_);
    ports_.wait_seconds(0.1F);
    for (const editing::BoxItem& trim : trims_) {
        trim.box().mark_unread(); // unsure until the controller has answered
    }
    ports_.waiting.process_events();
    ports_.wait_seconds(0.2F);
    for (const calibration::ReadRequest& request : opening_reads) {
        comm_.poll(calibration::read_message(request), request.reply);
    }
}

void Dashboard::tell_held() {
    if (held_changed) {
        held_changed();
    }
}

void Dashboard::scale_gauges() {
    form_.tachometer.set_scale(tachometer_scale(scales_.full_scale_rpm));
    const auto* const manifold = std::ranges::find(manifolds, scales_.map_span, &Manifold::sensor_kpa);
    if (manifold != manifolds.end()) {
        form_.manifold_pressure.set_scale(manifold->scale);
    }
}

void Dashboard::scale_lamps() {
    const auto stoichiometric = static_cast<double>(scales_.lambda_scale);
    for (std::size_t i = 0; i < form_.lambda_label.size(); ++i) {
        form_.lambda_label[i].set_text(masked(stoichiometric * mark_lambda(i), "#0.0"));
    }
    form_.lambda_val.set_text(scales_.shows_lambda ? "= 1.0" : "=" + masked(stoichiometric, "#0.0"));
}

void Dashboard::refresh() {
    form_.manifold_pressure.set_value(live_.manifold_kpa);
    form_.control_ego_gain.set_text(masked(live_.ego_correction, "0.000"));
    show_mixture(live_.lambda);
    const MixtureText mixture = mixture_text(live_, scales_);
    form_.lambda_live.set_text(mixture.figure + " " + std::string(mixture.unit));
    form_.bat_volts.set_value(live_.battery_volts);
    form_.tachometer.set_value(live_.engine_rpm / 1000.0F);
    form_.water_temp.set_value(live_.coolant_temp);
    form_.air_temp.set_value(live_.air_temp);
    form_.Timing.set_value(live_.ignition_timing);
    for (std::size_t i = 0; i < form_.GPO_duty.size(); ++i) {
        form_.GPO_duty[i].set_value(live_.gpo_duty[i]);
    }
}

void Dashboard::show_mixture(float lambda) {
    const auto show = [this](std::size_t lamp, bool lit) {
        form_.afr_led[lamp].set_back_colour(lit ? lamp_lit(lamp) : lamp_dark);
    };
    if (lambda == 0) {
        show(lit_lamp_, false);
        show(0, false);
        lit_lamp_ = 0;
        return;
    }
    const std::size_t lamp = lamp_of(lambda);
    if (lamp != lit_lamp_) {
        show(lit_lamp_, false);
        show(lamp, true);
        lit_lamp_ = lamp;
    }
}

// A key that is held asks for one at each repeat. The next follows with the next events, so that the needles move in
// between.
void Dashboard::update() {
    if (opening_ || other_controller_) {
        show_status();
        return;
    }
    if (updating_) {
        update_again_ = true;
        return;
    }
    {
        const Raised updating(updating_);
        send_trims();
    }
    show_status();
    if (std::exchange(update_again_, false)) {
        ports_.timers.post([this] { update(); });
    }
}

void Dashboard::send_trims() {
    const link::Pause pause(state_);
    tally_ = {};
    ports_.wait_seconds(0.1F);
    const editing::EditorLink::ToOneController to_one(link_);
    for (editing::BoxItem& trim : trims_) {
        editing::Walk walk{.link = link_,
                           .go_on = [this] { return !opening_ && !link_.lost(); },
                           .note_fate =
                               [&](editing::Fate fate) {
                                   tally_.sent += fate == editing::Fate::accepted ? 1 : 0;
                                   const bool went = fate != editing::Fate::refused && fate != editing::Fate::skipped;
                                   if (went && !trim.box().entered_behind() &&
                                       &trim.box() != &form_.base_offset_deg) { // that one waits for the echo
                                       trim.box().set_back_colour(platform::confirmed);
                                   }
                               }};
        if (walk.go_on()) {
            trim.send(walk);
        }
    }
    other_controller_ = !opening_ && link_.lost();
}

void Dashboard::read_again() {
    if (opening_ || updating_ || other_controller_) {
        return;
    }
    {
        const Raised opening(opening_);
        const link::Pause pause(state_);
        for (editing::BoxItem& trim : trims_) {
            trim.keep_entries();
        }
        ports_.wait_seconds(0.1F);
        for (const calibration::ReadRequest& request : opening_reads) {
            if (std::ranges::any_of(trims_, [&](const editing::BoxItem& trim) { return trim.wants(request); })) {
                comm_.poll(calibration::read_message(request), request.reply);
            }
        }
        for (editing::BoxItem& trim : trims_) {
            trim.restore_entries();
        }
    }
    show_status();
}

// With the next events, when an echo has done all it does to the box.
void Dashboard::note_changed() {
    if (!updating_ && !opening_) {
        tally_ = {};
    }
    if (!std::exchange(change_posted_, true)) {
        ports_.timers.post([this] {
            change_posted_ = false;
            show_status();
        });
    }
}

void Dashboard::show_status() {
    if (opening_) {
        return;
    }
    editing::Counts counts;
    for (const editing::BoxItem& trim : trims_) {
        counts += trim.counts();
    }
    form_.trim_status.set_text(editing::status_text({.counts = counts,
                                                     .groups = {},
                                                     .tally = updating_ ? editing::Tally{} : tally_,
                                                     .aborted = state_.comm_aborted,
                                                     .demo = state_.demo_mode,
                                                     .note = other_controller_ ? "Nothing more is sent: another "
                                                                                 "controller may answer now. Leave "
                                                                                 "this window and open it again"
                                                                               : ""}));
    form_.read_again.set_enabled(counts.unread > 0 && !state_.demo_mode && !state_.comm_aborted);
}

std::string Dashboard::show_place(platform::Control& control) const {
    control.set_focus();
    return &control == &form_.ecu_pgm[0]   ? "Fuel scaler"
           : &control == &form_.ecu_pgm[1] ? "Fuel offset"
                                           : "Timing offset";
}

void Dashboard::trim_key(platform::TextBox& box, bool steps, platform::KeyPress& key) {
    if (key.code == platform::key::enter) {
        key.code = 0;
        update();
        return;
    }
    if (!steps || !key.shift || (key.code != platform::key::up && key.code != platform::key::down)) {
        return;
    }
    const double step = key.code == platform::key::up ? trim_step : -trim_step;
    key.code = 0;
    if (opening_ || box.unread()) { // what was never read is nothing to step from
        return;
    }
    box.set_text(masked(leading_number(box.text()) + step, "##.000"));
    update();
}

void Dashboard::filter_tachometer(std::size_t item) {
    for (platform::MenuItem& entry : form_.menu_opts_tach_filt_num) {
        entry.set_checked(static_cast<std::size_t>(entry.index()) == item);
    }
    live_.rpm_filter_gain = filter_gains.at(item);
}

void Dashboard::view_gpo(std::size_t channel) {
    for (std::size_t i = 0; i < form_.GPO_duty.size(); ++i) {
        form_.menu_view_gpo[i].set_checked(i == channel);
        form_.GPO_duty[i].set_visible(i == channel);
    }
}

// An Update under way sends nothing more of a view that was aborted: the next view may open the link again below it.
void Dashboard::leave() {
    link_.hush();
    if (state_.comm_aborted) {
        for (const editing::BoxItem& trim : trims_) {
            trim.box().mark_unread();
        }
    }
    navigation_.view_closed(form_.form);
}

} // namespace ecu::views
