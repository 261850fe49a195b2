#include "logging/plotter.h"

#include "calibration/encoding.h"
#include "link/pause.h"
#include "logging/log_name.h"
#include "logging/log_row.h"
#include "platform/display_mask.h"
#include "platform/leading_number.h"

#include <algorithm>
#include <cmath>

namespace ecu::logging {

namespace {

constexpr std::array<int, 8> intervals_ms{100, 250, 500, 1000, 2000, 5000, 10000, 1};
constexpr std::size_t fastest_item = 7;

// The chart's window holds 600 samples. At the fastest interval the link sets the pace: a message and its reply take
// 15 ms of the wire on average.
constexpr double samples_shown = 600;
constexpr double fastest_sample_seconds = 0.016;

constexpr auto limits = calibration::read_request('C'); // what the spans of two channels hang on

} // namespace

Plotter::Plotter(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                 shell::Navigation& navigation, platform::Timer& timer3, const calibration::Scales& scales,
                 const messages::EcuLiveData& live, MonitorLabels monitor, FrmPlotter& form)
    : ports_(ports), state_(state), comm_(comm), navigation_(navigation), timer3_(timer3), scales_(scales), live_(live),
      monitor_(monitor), form_(form) {
    for (std::size_t i = 0; i < channel_count; ++i) {
        const ChartChannel& channel = chart_channels[i];
        form_.Strip1.set_channel(i, {.colour = channel.colour,
                                     .caption = std::string(channel.caption),
                                     .unit = std::string(channel.field->unit),
                                     .offset = channel.offset,
                                     .span = channel.span,
                                     .decimals = channel.decimals});
    }
    for (std::size_t i = 0; i < intervals_ms.size(); ++i) {
        form_.menu_log_int[i].set_checked(intervals_ms[i] == timer3_.interval_ms());
    }
    wire();
}

void Plotter::wire() {
    form_.form.on_activate = [this] { activate(); };
    form_.form.on_unload = [this] { leave(); };
    form_.start_log_button.clicked = [this] { start_logging(); };
    form_.stop_log_button.clicked = [this] { stop_logging(); };
    form_.exit_button.clicked = [this] { form_.form.unload(); };
    form_.menufileexit.clicked = [this] { form_.form.unload(); };
    form_.plot_file.double_clicked = [this] { choose_file(); };
    form_.browse.clicked = [this] { choose_file(); };
    form_.new_name.clicked = [this] { form_.plot_file.set_text(next_log_name(ports_.folder, form_.plot_file.text())); };
    form_.plot_file.changed = [this] { show_file_note(); };
    form_.save_picture.clicked = [this] { save_chart_picture(); };
    form_.Strip1.clicked = [this] { stamp(); };
    for (std::size_t i = 0; i < channel_count; ++i) {
        form_.Check3d1[i].clicked = [this, i] {
            form_.Strip1.set_channel_enabled(i, form_.Check3d1[i].checked());
            show_hint();
        };
    }
    show_hint();
    for (std::size_t i = 0; i < intervals_ms.size(); ++i) {
        form_.menu_log_int[i].clicked = [this, i] { set_interval(i); };
    }
}

void Plotter::activate() {
    form_.form.set_caption("Plotter" + state_.link_title_suffix);
    take_over();
    ports_.wait_seconds(0.1F);
}

// The strip and its scales as the controller and the boxes have them, before the first sample is asked for.
void Plotter::take_over() {
    const link::Pause paused(state_);
    ports_.wait_seconds(0.1F);
    form_.stop_log_button.set_enabled(logging_active_);
    form_.start_log_button.set_enabled(!logging_active_);
    show_interval();
    show_file_note();
    ports_.wait_seconds(0.5F);
    comm_.poll(calibration::read_message(limits), limits.reply);
    for (std::size_t i = 0; i < channel_count; ++i) {
        platform::StripChart::Channel channel = form_.Strip1.channels()[i];
        channel.colour = form_.Check3d1[i].fore_colour().value_or(chart_channels[i].colour);
        form_.Strip1.set_channel(i, channel);
    }
    note_scales();
}

void Plotter::note_scales() {
    note_scale(rpm_channel, scales_.full_scale_rpm,
               "RPM [0 to " + platform::masked(scales_.full_scale_rpm, "####0") + "]");
    note_scale(manifold_channel, scales_.map_span,
               "Manifold Prs. [0 to " + platform::masked(scales_.map_span, "##0") + " kPa]");
}

void Plotter::note_scale(std::size_t channel, float span, std::string_view caption) {
    form_.Check3d1[channel].set_text(caption);
    platform::StripChart::Channel scaled = form_.Strip1.channels()[channel];
    scaled.caption = caption;
    scaled.span = span;
    form_.Strip1.set_channel(channel, scaled);
}

void Plotter::show_interval() {
    const int t = timer3_.interval_ms();
    form_.form.set_caption("DATA PLOTTER    " + platform::plain_number(1000.0 / t) + " Sample/Second, " +
                           platform::plain_number(t * 0.001 * 10) + " minute window");
    const bool fastest = t == intervals_ms[fastest_item];
    form_.Strip1.set_seconds_shown(samples_shown * (fastest ? fastest_sample_seconds : t * 0.001));
}

void Plotter::set_interval(std::size_t item) {
    timer3_.set_running(false);
    timer3_.set_interval_ms(intervals_ms.at(item));
    ports_.waiting.process_events();
    timer3_.set_running(true);
    for (platform::MenuItem& entry : form_.menu_log_int) {
        entry.set_checked(false);
    }
    form_.menu_log_int[item].set_checked(true);
    show_interval();
    if (item == fastest_item) {
        form_.form.set_caption("DATA PLOTTER  Fast as Comm will allow");
    }
}

void Plotter::start_logging() {
    if (logging_active_) {
        ports_.dialogs.say("But you are already logging, You must halt to begin a new log");
        return;
    }
    log_file_name_ = form_.plot_file.text();
    set_logging(true);
    const std::string failure = file_.open(path_of(ports_.folder, log_file_name_),
                                           log_header(ports_.clock.date_text(), ports_.clock.time_text()));
    if (!failure.empty()) {
        set_logging(false);
        ports_.dialogs.message_box({.text = "The log file " + log_file_name_ + " could not be opened: " + failure +
                                            ". Nothing is being logged. Double click the Plotter File Name to choose "
                                            "another name or folder, then start the log again.",
                                    .icon = platform::Icon::warning});
    }
}

void Plotter::stop_logging() {
    if (!logging_active_) {
        ports_.dialogs.say("But logging has not been started");
    } else {
        file_.close();
    }
    set_logging(false);
}

void Plotter::set_logging(bool active) {
    logging_active_ = active;
    for (platform::Control* control :
         std::initializer_list<platform::Control*>{&form_.plot_file, &form_.browse, &form_.new_name}) {
        control->set_enabled(!active);
    }
    form_.start_log_button.set_enabled(!active);
    form_.stop_log_button.set_enabled(active);
    show_file_note();
}

void Plotter::show_file_note() {
    form_.file_note.set_text(logging_active_ ? "is being written"
                                             : log_name_note(ports_.folder, form_.plot_file.text()));
}

bool Plotter::chart_runs() const {
    return std::ranges::any_of(std::span(form_.Check3d1.begin(), starting_channels), &platform::CheckBox::checked);
}

void Plotter::show_hint() {
    form_.Strip1.set_hint(chart_runs() ? "" : "The chart runs while one of the first 16 channels is ticked.");
}

void Plotter::save_chart_picture() {
    const std::string path = ports_.dialogs.save_file({.title = "Save the chart as a picture",
                                                       .default_extension = "png",
                                                       .filter = "Picture (*.png)|",
                                                       .initial_name = "PLOTTER.PNG"});
    if (!path.empty() && !(form_.Strip1.save_picture && form_.Strip1.save_picture(path))) {
        ports_.dialogs.message_box(
            {.text = "The picture " + path + " could not be written. Choose another name or folder.",
             .icon = platform::Icon::warning});
    }
}

void Plotter::log_failed(const std::string& reason) {
    set_logging(false);
    const std::string rows = std::to_string(file_.rows());
    // The box must not stand inside the sample clock's tick, or the polling would wait for its answer.
    ports_.timers.post([this, text = "The log file " + log_file_name_ + " could not be written: " + reason +
                                     ". Logging has stopped; " + rows +
                                     " rows had been written and are kept as far as the file can still be reached."] {
        ports_.dialogs.message_box({.text = text, .icon = platform::Icon::warning});
    });
}

void Plotter::plot_and_log_sample() {
    const float seconds = ports_.now();
    if (logging_active_) {
        const std::string failure = file_.add(log_row(live_, ports_.clock.time_text(), seconds));
        if (failure.empty()) {
            form_.File_Samples.set_text(std::to_string(file_.rows()));
        } else {
            log_failed(failure);
        }
    } else {
        form_.File_Samples.set_text("N/A");
    }
    const std::vector<platform::StripChart::Channel>& channels = form_.Strip1.channels();
    if (channels[rpm_channel].span != scales_.full_scale_rpm || channels[manifold_channel].span != scales_.map_span) {
        note_scales(); // demo mode, chosen while the plotter was open, brings an engine of its own
    }
    if (!chart_runs() || form_.skip_graphics.checked()) {
        return;
    }
    const std::array<float, channel_count> sample = fractions();
    form_.Strip1.add_sample({.time = seconds, .fractions = sample});
}

std::array<float, channel_count> Plotter::fractions() const {
    const auto shown = [](const platform::Label& label) {
        return static_cast<float>(platform::leading_number(label.text()));
    };
    std::array<float, channel_count> values{};
    std::ranges::transform(chart_channels, values.begin(),
                           [this](const ChartChannel& channel) { return channel.field->value(live_); });
    // These three stand still with their labels, which another view may have frozen.
    values[injector_duty_channel] = shown(monitor_.inj_duty);
    values[ignition_duty_channel] = shown(monitor_.ign_duty);
    values[wheel_channel] = shown(monitor_.wheel_idx_num);
    for (std::size_t i = 0; i < channel_count; ++i) {
        const platform::StripChart::Channel& channel = form_.Strip1.channels()[i];
        values[i] = channel.span == 0 ? 0 : (values[i] - channel.offset) / channel.span;
    }
    values[1] = std::max(values[1], 0.0F); // a mixture richer than the scale stays on its bottom line
    return values;
}

void Plotter::choose_file() {
    const std::string chosen = ports_.dialogs.save_file({.title = "Plotter File Name",
                                                         .default_extension = "csv",
                                                         .filter = "comma spaced value (*.csv)|",
                                                         .initial_name = "*.CSV"});
    if (!chosen.empty() && chosen != "*.CSV") {
        form_.plot_file.set_text(chosen);
    }
}

void Plotter::stamp() {
    const float now = ports_.now();
    // 0.995 and more would round up to a whole second, which the digits before it do not know of.
    const float fraction = std::min(now - std::floor(now), 0.99F);
    const std::string text = ports_.clock.time_text() + platform::masked(fraction, ".##");
    form_.Strip1.add_stamp({.time = now, .height = 0.05F, .text = text});
}

void Plotter::leave() {
    form_.form.set_caption("");
    if (logging_active_) {
        ports_.dialogs.say("Logging will be halted prior to exit");
        if (logging_active_) { // a failed write may have stopped it while the box stood
            stop_logging();
        }
        ports_.waiting.process_events();
    }
    navigation_.view_closed(form_.form);
}

} // namespace ecu::logging
