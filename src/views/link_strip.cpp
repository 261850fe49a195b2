#include "views/link_strip.h"

#include "messages/catalogue.h"

#include <utility>

namespace ecu::views {

namespace {

constexpr int second_ms = 1000;
constexpr float stale_seconds = 2;
constexpr float minute = 60;
constexpr const char* between = "   ";

// Whether a view's live values are asked for all the time; the others ask at their opening and when they send.
bool is_polled(link::View view) {
    return view != link::View::none && view != link::View::configuration && view != link::View::diagnostics;
}

} // namespace

LinkStrip::LinkStrip(std::initializer_list<platform::Form*> views) {
    for (platform::Form* view : views) {
        platform::Label& label = labels_.emplace_back(*view, "link_strip");
        label.set_tool_tip("The link: its port, replies in a second, messages that had to be asked again in the last "
                           "minute, and the log. Red: no live values come, and the figures shown are old");
    }
}

void LinkStrip::follow(const Use& use) {
    use_ = std::make_unique<const Use>(use);
    observation_ = use.comm.observe([this](const link::Observed& observed) { look(observed); });
    second_ = use.ports.timers.make_timer(second_ms);
    second_->on_tick = [this] {
        replies_before_ = std::exchange(replies_now_, 0);
        show();
    };
    second_->set_running(true);
}

void LinkStrip::look(const link::Observed& observed) {
    switch (observed.verdict) {
    case link::Verdict::accepted:
        ++replies_now_;
        if (observed.request[2] == messages::live_block.code) {
            live_at_ = use_->ports.now();
        }
        break;
    case link::Verdict::given_up:
        break; // its tries were counted
    case link::Verdict::silent:
    case link::Verdict::damaged:
    case link::Verdict::untaken:
    case link::Verdict::foreign:
        retries_.push_back(use_->ports.now());
        break;
    }
}

std::string LinkStrip::way() const {
    const link::SharedState& state = use_->state;
    if (state.demo_mode) {
        return "Demo: the values are made up";
    }
    if (!state.remote_server_ip.empty()) {
        return "Through the console at " + state.remote_server_ip;
    }
    const std::string device = use_->comm1.device_of(state.comm_port_number);
    return "COM" + std::to_string(state.comm_port_number) + (device.empty() ? ", no device" : " (" + device + ")");
}

std::string LinkStrip::replies() const {
    if (use_->state.comm_aborted) {
        return "aborted: nothing is sent";
    }
    std::string text = stale() ? "no live values" : std::to_string(replies_before_) + " replies/s";
    if (replies_before_ == 0 && !is_polled(use_->state.current_view)) {
        text = "idle";
    }
    text += between;
    text += retries_.empty()       ? "no retries"
            : retries_.size() == 1 ? "1 retry in the last minute"
                                   : std::to_string(retries_.size()) + " retries in the last minute";
    return text;
}

// Only views that are polled have figures to grow old; a view that has just come has not had its time yet.
bool LinkStrip::stale() const {
    const link::SharedState& state = use_->state;
    // The plotter asks for the live values at every other of its ticks.
    const float asked_every = state.current_view == link::View::plotter ? 2 * use_->log_interval() : 0;
    return !state.demo_mode && is_polled(state.current_view) && !state.polling_paused &&
           use_->ports.elapsed_since(live_at_) > stale_seconds + asked_every;
}

void LinkStrip::show() {
    const link::View view = use_->state.current_view;
    if (std::exchange(shown_, view) != view) {
        live_at_ = use_->ports.now();
    }
    while (!retries_.empty() && use_->ports.elapsed_since(retries_.front()) > minute) {
        retries_.pop_front();
    }
    if (view == link::View::none) {
        return;
    }
    std::string text = way();
    if (!use_->state.demo_mode) {
        text += between + replies();
    }
    if (const std::string log = use_->log(); !log.empty()) {
        text += between + log;
    }
    const platform::Colour colour = stale() ? platform::light_red : platform::black;
    for (platform::Label& label : labels_) {
        if (label.text() != text) {
            label.set_text(text);
        }
        if (label.fore_colour() != colour) {
            label.set_fore_colour(colour);
        }
    }
}

} // namespace ecu::views
