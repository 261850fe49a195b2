#include "diagnostics/dyno.h"

#include "diagnostics/picture_file.h"
#include "link/pause.h"
#include "logging/log_name.h"
#include "messages/catalogue.h"
#include "platform/display_mask.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"
#include "platform/safe_file.h"
#include "platform/small_file.h"

#include <algorithm>
#include <limits>

namespace ecu::diagnostics {

namespace {

constexpr std::string_view newest_file = "dyno_temp.csv";
constexpr std::string_view reference_file = "ref_dyno_temp.csv";
constexpr int highest_rpm = std::numeric_limits<std::uint16_t>::max();
constexpr float sync_seconds = 0.2F; // of the file; each row of a run at the usual rate, and few enough of a faster one
constexpr float first_scale = 1000;
constexpr float headroom = 1.25F;
constexpr std::uint8_t arm_now = 1;
constexpr std::uint8_t disarm_now = 0;

std::string trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string()
                                           : std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string rounded(float value) { return platform::masked(value, "####0"); }

} // namespace

Dyno::Dyno(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm, WhenFree& when_free,
           platform::Timer& timer1, const messages::EcuLiveData& live, FrmDiagnostics& form)
    : ports_(ports), state_(state), comm_(comm), when_free_(when_free), timer1_(timer1), live_(live), form_(form) {
    wire();
}

void Dyno::wire() {
    form_.dyno_sample_rate.changed = [this] { follow_sample_rate(); };
    form_.dyno_arm.clicked = [this] { arm(); };
    form_.dyno_cancel.clicked = [this] { cancel(); };
    form_.dyno_plot.clicked = [this] { plot_dyno_graphs(); };
    form_.dyno_ref_file.clicked = [this] { save_reference(); };
    form_.dyno_save.clicked = [this] { save_run(); };
    form_.dyno_file_name.changed = form_.dyno_series.changed = [this] { show_save_note(); };
    form_.dyno_save_picture.set_enabled(false);
    form_.dyno_save_picture.clicked = [this] { save_picture_of(form_.dyno_plot_screen, ports_, "DYNO.PNG"); };
    form_.dyno_plot_screen.resized = [this] {
        if (drawn_) {
            form_.dyno_plot_screen.clear();
            draw_curves();
        }
    };
    form_.dyno_plot_screen.pointed_at = [this](int x, int) {
        const std::vector<DynoPoint>& points = newest_.points;
        const auto nearest =
            std::ranges::min_element(points, {}, [x](const DynoPoint& p) { return std::abs(p.x - x); });
        mark(static_cast<int>(nearest - points.begin()));
    };
    form_.dyno_plot_screen.key_down = [this](platform::KeyPress& key) {
        if (const int step = step_of(key, static_cast<int>(newest_.points.size())); step != 0) {
            mark(marked_ + step);
            key.code = 0;
        }
    };
    show_axes();
}

// The newest run of an earlier use of the console can still be saved.
void Dyno::opened() {
    if (!opened_before_) {
        opened_before_ = true;
        std::error_code error;
        const bool there = std::filesystem::exists(ports_.folder / newest_file, error);
        form_.dyno_save.set_enabled(there);
        form_.dyno_ref_file.set_enabled(there);
    }
    show_save_note();
}

void Dyno::close_file() {
    file_.sync();
    file_.close();
}

void Dyno::follow_sample_rate() {
    timer1_.set_interval_ms(
        std::max(1, platform::round_to_even(platform::leading_number(form_.dyno_sample_rate.text()))));
}

std::optional<DynoLimits> Dyno::limits_of_boxes(std::string& refusal) const {
    std::array<int, 2> rpm{};
    for (std::size_t i = 0; i < rpm.size(); ++i) {
        const std::string& text = form_.dyno_trig_rpm[i].text();
        rpm[i] = platform::round_to_even(platform::leading_number(text));
        if (!platform::is_number(text) || rpm[i] < 0 || rpm[i] > highest_rpm) {
            refusal =
                std::string(i == 0 ? "Trig RPM" : "End RPM") + " is \"" + text +
                "\", and the dyno needs a whole number from 0 to 65535 there. Nothing has been armed. Correct the "
                "number, then arm again.";
            return std::nullopt;
        }
    }
    return DynoLimits{rpm[0], rpm[1]};
}

void Dyno::arm() {
    std::string refusal;
    const std::optional<DynoLimits> limits = limits_of_boxes(refusal);
    if (!limits) {
        ports_.dialogs.message_box({.text = refusal, .icon = platform::Icon::warning});
        return;
    }
    form_.dyno_arm.set_enabled(false);
    form_.dyno_save.set_enabled(false);
    form_.dyno_ref_file.set_enabled(false);
    form_.dyno_cancel.set_enabled(true);
    arming_ = true;
    cancel_asked_ = false;
    when_free_.run([this, limits = *limits] { arm_controller(limits); });
}

void Dyno::arm_controller(DynoLimits limits) {
    {
        const link::Pause paused(state_);
        const bool started = form_.diagnostics_open && start_file();
        if (started) {
            ports_.wait_seconds(0.2F);
        }
        // The tuner may have left or thought better of it meanwhile; then nothing is armed behind his back.
        if (started && !cancel_asked_ && form_.diagnostics_open && send_limits_and_arm(limits)) {
            limits_ = limits;
            form_.dyno_note.set_text("The run is recorded from " + std::to_string(limits.trigger_rpm) + " to " +
                                     std::to_string(limits.end_rpm) + " rpm.");
            ports_.wait_seconds(0.1F);
        } else if (!cancel_asked_) {
            file_.close();
            form_.dyno_arm.set_enabled(true);
            form_.dyno_cancel.set_enabled(false);
        }
    }
    arming_ = false;
    if (cancel_asked_) {
        disarm();
    }
}

bool Dyno::send_limits_and_arm(DynoLimits limits) {
    using platform::byte_high;
    using platform::byte_low;
    const std::array<link::Message, 2> setup{
        {{messages::dyno_setup.code, 0, byte_low(limits.trigger_rpm), byte_high(limits.trigger_rpm)},
         {messages::dyno_setup.code, 1, byte_low(limits.end_rpm), byte_high(limits.end_rpm)}}};
    for (const link::Message& message : setup) {
        if (comm_.send_ecu_message(message, messages::dyno_setup.reply) != link::Outcome::accepted) {
            not_armed("the controller did not take the limits");
            return false;
        }
    }
    if (comm_.send_ecu_message({messages::dyno_control.code, arm_now, 0, 0}, messages::dyno_control.reply) !=
        link::Outcome::accepted) {
        not_armed("the controller did not answer");
        return false;
    }
    return true;
}

void Dyno::not_armed(std::string_view why) {
    form_.dyno_note.set_text(state_.demo_mode
                                 ? "Not armed: demo mode has no controller."
                                 : "Not armed: " + std::string(why) + ". Arm again once the link is there.");
}

bool Dyno::start_file() {
    file_.close();
    synced_at_ = ports_.now();
    const std::string failure =
        file_.open(ports_.folder / newest_file, dyno_header(ports_.clock.date_text(), ports_.clock.time_text()));
    if (failure.empty()) {
        return true;
    }
    form_.dyno_note.set_text("Not armed: there is no file for the run.");
    ports_.dialogs.message_box(
        {.text = "The dyno file " + platform::named_in_folder(ports_, std::string(newest_file)) +
                 " could not be opened: " + failure +
                 ". Nothing has been armed. Make the folder writable, or start the program in another one, then arm "
                 "again.",
         .icon = platform::Icon::warning});
    return false;
}

void Dyno::cancel() {
    if (arming_) { // inside its waits; it ends by disarming
        cancel_asked_ = true;
        return;
    }
    form_.dyno_cancel.set_enabled(false); // one press, one message
    when_free_.run([this] { disarm(); });
}

void Dyno::disarm() {
    const link::Pause paused(state_);
    ports_.wait_seconds(0.2F);
    const bool disarmed = comm_.send_ecu_message({messages::dyno_control.code, disarm_now, 0, 0},
                                                 messages::dyno_control.reply) == link::Outcome::accepted;
    form_.dyno_note.set_text(disarmed ? "Cancelled; the run is not complete."
                                      : "The controller did not answer: it may still be armed.");
    ports_.wait_seconds(0.2F);
    form_.dyno_arm.set_enabled(true);
    form_.dyno_cancel.set_enabled(false);
}

void Dyno::on_row() {
    if (!file_.is_open()) {
        return;
    }
    const std::string failure = file_.add(dyno_row(live_, platform::leading_number(form_.dyno_samples.text())));
    if (failure.empty()) {
        form_.dyno_note.set_text(std::to_string(file_.rows()) + " rows in " + std::string(newest_file));
        if (ports_.elapsed_since(synced_at_) > sync_seconds) {
            file_.sync();
            synced_at_ = ports_.now();
        }
        return;
    }
    const std::string rows = std::to_string(file_.rows());
    form_.dyno_arm.set_enabled(true);
    form_.dyno_note.set_text("The run is no longer recorded; " + rows + " rows had been written.");
    tell_later("The dyno file " + platform::named_in_folder(ports_, std::string(newest_file)) +
               " could not be written: " + failure + ". The run is no longer recorded; " + rows +
               " rows had been written and are kept as far as the file can still be reached. Make room there, then arm "
               "again.");
}

void Dyno::on_finish() {
    if (!file_.is_open()) {
        return;
    }
    const std::string rows = std::to_string(file_.rows());
    close_file();
    form_.dyno_note.set_text("The run is finished: " + rows + " rows in " + std::string(newest_file));
    std::error_code error;
    if (!std::filesystem::exists(ports_.folder / reference_file, error)) {
        copy_newest(std::string(reference_file), "The reference run");
    }
    form_.dyno_save.set_enabled(true);
    show_save_note();
    plot_dyno_graphs();
    form_.dyno_arm.set_enabled(true);
    form_.dyno_cancel.set_enabled(false);
    form_.dyno_ref_file.set_enabled(true);
}

// The message of a failure must not stand inside the handling of a reply, or the link would wait for its answer.
void Dyno::tell_later(std::string text) {
    ports_.timers.post([this, told = std::move(text)] {
        ports_.dialogs.message_box({.text = told, .icon = platform::Icon::warning});
    });
}

void Dyno::plot_dyno_graphs() {
    std::string spoiled;
    limits_ = limits_of_boxes(spoiled).value_or(limits_);
    Drawn drawn{.newest = read_dyno_file(ports_.folder / newest_file),
                .reference = read_dyno_file(ports_.folder / reference_file),
                .limits = limits_};
    platform::Picture& picture = form_.dyno_plot_screen;
    float greatest = first_scale;
    if (drawn.reference) {
        picture.clear();
        const DynoCurves curves =
            dyno_curves(*drawn.reference, drawn.limits, first_scale, picture.width(), picture.height());
        greatest = std::max(curves.torque_max, curves.power_max);
    }
    drawn.scale = greatest == 0 ? first_scale : greatest * headroom;
    if (!drawn.newest && !drawn.reference) {
        form_.dyno_note.set_text("There is no run to draw: neither " + std::string(newest_file) + " nor " +
                                 std::string(reference_file) + " is in the folder.");
        return;
    }
    drawn_ = std::move(drawn);
    form_.dyno_save_picture.set_enabled(true);
    draw_curves();
}

// Without clearing: that is for a reference that is there, and for a drawing of another size.
void Dyno::draw_curves() {
    platform::Picture& picture = form_.dyno_plot_screen;
    const auto curves = [&](const std::optional<std::vector<DynoSample>>& run) {
        return run ? dyno_curves(*run, drawn_->limits, drawn_->scale, picture.width(), picture.height()) : DynoCurves();
    };
    newest_ = curves(drawn_->newest);
    reference_ = curves(drawn_->reference);
    draw(newest_, drawn_->limits, picture, platform::palette[9], platform::palette[12]);
    draw(reference_, drawn_->limits, picture, platform::palette[8], platform::palette[7]);
    picture.refresh();
    marked_ = -1;
    picture.set_marker({});
    form_.dyno_reading.set_text("");
    show_axes();
    show_peaks(newest_, reference_);
}

void Dyno::show_axes() {
    const DynoLimits limits = drawn_ ? drawn_->limits : limits_;
    const float scale = drawn_ ? drawn_->scale : first_scale * headroom;
    platform::Picture::Axis rpm{"Engine speed, rpm", {}};
    platform::Picture::Axis figure{"Torque and power figures", {}};
    constexpr int parts = 5;
    for (int i = 0; i <= parts; ++i) {
        const double at = static_cast<double>(i) / parts;
        rpm.ticks.push_back(
            {at, platform::masked(limits.trigger_rpm + (limits.end_rpm - limits.trigger_rpm) * at, "####0")});
        figure.ticks.push_back({at, platform::masked(static_cast<double>(scale) * at, "####0")});
    }
    form_.dyno_plot_screen.set_axes(std::move(rpm), std::move(figure));
}

void Dyno::show_peaks(const DynoCurves& newest, const DynoCurves& reference) {
    const auto words = [](std::string_view run, const DynoCurves& curves) {
        if (curves.points.empty()) {
            return std::string(run) + ": no rows";
        }
        return std::string(run) + ": greatest torque figure " + rounded(curves.torque_max) + " at " +
               rounded(curves.torque_max_rpm) + " rpm, greatest power figure " + rounded(curves.power_max) + " at " +
               rounded(curves.power_max_rpm) + " rpm";
    };
    std::string text = words("Newest run", newest) + ".\n" + words("Reference", reference) + ".";
    if (drawn_->limits.end_rpm == drawn_->limits.trigger_rpm) {
        text += "\nTrig RPM and End RPM are the same: between them there is nothing to draw.";
    }
    form_.dyno_peaks.set_text(text);
}

void Dyno::mark(int index) {
    if (newest_.points.empty()) {
        return;
    }
    marked_ = std::clamp(index, 0, static_cast<int>(newest_.points.size()) - 1);
    const DynoPoint& point = newest_.points[static_cast<std::size_t>(marked_)];
    std::string text =
        rounded(point.rpm) + " rpm: torque figure " + rounded(point.torque) + ", power figure " + rounded(point.power);
    const std::vector<DynoPoint>& others = reference_.points;
    if (!others.empty()) {
        const auto nearest = std::ranges::min_element(
            others, {}, [&point](const DynoPoint& other) { return std::abs(other.rpm - point.rpm); });
        text += " (reference at " + rounded(nearest->rpm) + " rpm: " + rounded(nearest->torque) + ", " +
                rounded(nearest->power) + ")";
    }
    form_.dyno_reading.set_text(text);
    form_.dyno_plot_screen.set_marker(point.x);
}

bool Dyno::copy_newest(const std::string& name, std::string_view what) {
    const std::optional<std::string> content = platform::read_small_file(ports_.folder / newest_file);
    const std::string failure = content ? platform::replace_file(logging::path_of(ports_.folder, name), *content)
                                        : "there is no readable " + std::string(newest_file);
    if (failure.empty()) {
        return true;
    }
    tell_later(std::string(what) + " could not be written to " + name + ": " + failure +
               ". The newest run is still in " + platform::named_in_folder(ports_, std::string(newest_file)) +
               ". Free the name or the disk, then try again before the next run.");
    return false;
}

void Dyno::save_reference() {
    copy_newest(std::string(reference_file), "The reference run");
    plot_dyno_graphs();
}

std::string Dyno::saved_name() const {
    return trimmed(form_.dyno_file_name.text()) + "_" + trimmed(form_.dyno_series.text()) + ".csv";
}

void Dyno::save_run() {
    const std::string name = saved_name();
    if (!copy_newest(name, "The run")) {
        return;
    }
    form_.dyno_note.set_text("Saved as " + name);
    const double next = platform::round_to_even(platform::leading_number(form_.dyno_series.text())) + 1.0;
    form_.dyno_series.set_text(platform::masked(next, "000"));
    form_.dyno_save.set_enabled(false);
}

void Dyno::show_save_note() {
    const std::string name = saved_name();
    form_.dyno_save_note.set_text("Saves as " + name + ": " + logging::log_name_note(ports_.folder, name));
}

} // namespace ecu::diagnostics
