#include "diagnostics/crank_wheel.h"

#include "diagnostics/picture_file.h"
#include "messages/catalogue.h"
#include "platform/display_mask.h"

#include <algorithm>

namespace ecu::diagnostics {

namespace {

constexpr int teeth = messages::wheel_samples_used;
constexpr float idle_cycle_seconds = 0.1F; // of the loop while nothing can be sent
constexpr std::size_t most_faults_named = 12;

platform::Picture::Axis tooth_axis() {
    platform::Picture::Axis axis{"Tooth of the capture", {{0, "1"}}};
    for (int tooth = 20; tooth <= teeth; tooth += 20) {
        axis.ticks.push_back({(tooth - 1) / static_cast<double>(teeth - 1), std::to_string(tooth)});
    }
    return axis;
}

platform::Picture::Axis percent_axis() {
    return {"Period, % of the mean", {{0, "50"}, {0.25, "75"}, {0.5, "100"}, {0.75, "125"}, {1, "150"}}};
}

} // namespace

CrankWheel::CrankWheel(const platform::Ports& ports, link::EcuComm& comm, WhenFree& when_free,
                       const messages::EcuLiveData& live, const messages::WheelSamples& samples, FrmDiagnostics& form)
    : ports_(ports), comm_(comm), when_free_(when_free), live_(live), samples_(samples), form_(form) {
    form_.arm_capture.clicked = [this] { in_turn([this] { static_cast<void>(arm()); }); };
    form_.get_wheel_plot_data.clicked = [this] { in_turn([this] { read_and_draw(); }); };
    form_.wheel_diag_continuous.clicked = [this] {
        form_.wheel_diag_halt.set_enabled(true);
        in_turn([this] { run_continuously(); });
    };
    form_.wheel_diag_halt.clicked = [this] { halt(); };
    form_.wheel_save_picture.clicked = [this] { save_picture(); };
    form_.wheel_save_picture.set_enabled(false);
    form_.wheel_speed_plot.set_axes(tooth_axis(), percent_axis());
    form_.wheel_speed_plot.resized = [this] {
        if (drawn_) {
            show();
        }
    };
    form_.wheel_speed_plot.pointed_at = [this](int x, int) {
        const int width = std::max(1, form_.wheel_speed_plot.width());
        mark((x * (teeth - 1) + width / 2) / width);
    };
    form_.wheel_speed_plot.key_down = [this](platform::KeyPress& key) { move_mark(key); };
}

// A second sequence inside the first would mix two captures.
void CrankWheel::in_turn(std::function<void()> sequence) {
    set_busy(true);
    when_free_.run([this, run = std::move(sequence)] {
        if (form_.diagnostics_open) {
            run();
        }
        set_busy(false);
    });
}

link::Outcome CrankWheel::arm() {
    return comm_.send_ecu_message({messages::arm_capture.code}, messages::arm_capture.reply);
}

void CrankWheel::read_and_draw() {
    comm_.poll({messages::live_block.code}, messages::live_block.reply);
    std::string lost;
    for (std::uint8_t block = 0; block < messages::wheel_blocks; ++block) {
        const link::Message question{messages::wheel_block.code, block};
        if (comm_.send_ecu_message(question, messages::wheel_block.reply) != link::Outcome::accepted) {
            lost += (lost.empty() ? "" : ", ") + std::to_string(block * messages::wheel_block_samples + 1) + " to " +
                    std::to_string((block + 1) * messages::wheel_block_samples);
        }
    }
    form_.crank_target_rpm.set_text(platform::masked(live_.engine_rpm, "####0"));
    drawn_ = true;
    form_.wheel_save_picture.set_enabled(true);
    show();
    summarise(lost);
}

void CrankWheel::run_continuously() {
    do {
        const bool sent = arm() != link::Outcome::not_sent;
        ports_.waiting.process_events();
        read_and_draw();
        ports_.waiting.process_events();
        if (!sent) { // nothing has taken any time: the screen and the Halt button must get theirs
            ports_.wait_seconds(idle_cycle_seconds);
        }
    } while (form_.wheel_diag_halt.enabled());
}

void CrankWheel::halt() { form_.wheel_diag_halt.set_enabled(false); }

void CrankWheel::set_busy(bool busy) {
    for (platform::Button* button : {&form_.wheel_diag_continuous, &form_.arm_capture, &form_.get_wheel_plot_data}) {
        button->set_enabled(!busy);
    }
}

void CrankWheel::show() {
    platform::Picture& picture = form_.wheel_speed_plot;
    trace_ = wheel_trace(samples_, picture.width(), picture.height());
    draw(trace_, picture);
    if (marked_ >= 0) {
        mark(marked_);
    }
}

void CrankWheel::summarise(const std::string& lost_blocks) {
    std::string text;
    if (!lost_blocks.empty()) {
        text = "No answer for the teeth " + lost_blocks + ": they are from an earlier capture. ";
    }
    const auto faults = static_cast<std::size_t>(std::ranges::count_if(trace_.points, &WheelTrace::Point::fault));
    const auto first = samples_.periods.begin();
    if (std::all_of(first, first + teeth, [](float period) { return period == 0; })) {
        text += "No tooth was captured: every period is 0. Is the engine turning and the sensor connected?";
    } else if (faults == 0) {
        text += "All periods lie within 50 % of their mean.";
    } else {
        text += std::to_string(faults) + " of " + std::to_string(teeth) + " periods lie beyond 50 % of the mean: ";
        std::size_t named = 0;
        for (std::size_t i = 0; i < trace_.points.size() && named < most_faults_named; ++i) {
            if (trace_.points[i].fault) {
                text += (named++ == 0 ? "tooth " : ", ") + std::to_string(i + 1);
            }
        }
        text += faults > named ? " and more" : "";
    }
    form_.wheel_summary.set_text(text);
}

void CrankWheel::mark(int tooth) {
    if (!drawn_) {
        return;
    }
    marked_ = std::clamp(tooth, 0, teeth - 1);
    const auto at = static_cast<std::size_t>(marked_);
    const WheelTrace::Point& point = trace_.points[at];
    form_.wheel_reading.set_text(
        "Tooth " + std::to_string(marked_ + 1) + ": period " + platform::masked(samples_.periods[at], "####0") + ", " +
        platform::masked(point.percent, "##0.0") + " % of the mean" + (point.fault ? ", beyond the band" : ""));
    form_.wheel_speed_plot.set_marker(point.x);
}

void CrankWheel::move_mark(platform::KeyPress& key) {
    const int step = step_of(key, teeth);
    if (step != 0) {
        mark(marked_ + step);
        key.code = 0;
    }
}

void CrankWheel::save_picture() { save_picture_of(form_.wheel_speed_plot, ports_, "CRANKWHEEL.PNG"); }

} // namespace ecu::diagnostics
