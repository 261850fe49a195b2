#include "shell/polling.h"

namespace ecu::shell {

namespace {

using link::View;

constexpr int timer1_interval_ms = 50;
constexpr int timer3_interval_ms = 1000;
constexpr float first_filter_gain = 0.8F;
constexpr float demo_tachometer_rpm = 12000;
constexpr float red_line_share = 920.7F / 1023; // of full scale
constexpr int dyno_tab = 3;

std::size_t index_of(View view) { return static_cast<std::size_t>(view); }

} // namespace

Polling::Polling(const Use& use)
    : use_(use), timer1_(use.ports.timers.make_timer(timer1_interval_ms)),
      timer3_(use.ports.timers.make_timer(timer3_interval_ms)),
      tachometer_(use.forms.get<platform::Gauge>("frm_dashboard", "tachometer")),
      diags_tab_(use.forms.get<platform::Tabs>("frm_diagnostics", "diags_tab")) {
    FrmEcu& main = use_.main_form;
    demo_entries_ = {{&main.menu_View_Mapping, View::basic_mapping},
                     {&main.menu_view_temperature, View::additional_mapping},
                     {&main.menu_View_Plotter, View::plotter},
                     {&main.configuration_button, View::configuration},
                     {&main.gpo_button, View::gpo_mapping},
                     {&main.basic_map_button, View::basic_mapping},
                     {&main.plotter_button, View::plotter},
                     {&main.additional_map_button, View::additional_mapping},
                     {&use_.forms.get<platform::Button>("frm_dashboard", "Command2"), View::dashboard}};
    for (const platform::Form* form : use_.forms.forms()) {
        if (platform::Control* notice = form->find("show_demo_mode")) {
            demo_notices_.push_back(notice);
        }
    }
    timer1_->on_tick = [this] { run_or_defer(&Polling::timer1_tick, timer1_overdue_); };
    timer3_->on_tick = [this] { run_or_defer(&Polling::timer3_tick, timer3_overdue_); };
}

void Polling::start() {
    timer1_->set_running(true);
    timer3_->set_running(true);
}

void Polling::on_refresh(View view, std::function<void()> refresh) { refresh_.at(index_of(view)) = std::move(refresh); }

// A tick that comes inside a transaction of some screen is not caught up by itself: the next one is near.
void Polling::run_or_defer(Tick tick, bool& overdue) {
    if (ticking_ || use_.comm.busy()) {
        overdue = true;
        return;
    }
    overdue = false;
    struct Ticking {
        explicit Ticking(bool& flag) : flag_(flag) { flag_ = true; }
        ~Ticking() { flag_ = false; }
        bool& flag_;
    };
    {
        const Ticking ticking(ticking_);
        (this->*tick)();
    }
    run_overdue(&Polling::timer3_tick, timer3_overdue_);
    run_overdue(&Polling::timer1_tick, timer1_overdue_);
}

void Polling::run_overdue(Tick tick, bool& overdue) {
    if (overdue) {
        use_.ports.timers.post([this, tick, &overdue] {
            if (overdue) {
                run_or_defer(tick, overdue);
            }
        });
    }
}

void Polling::timer1_tick() {
    if (use_.state.polling_paused) {
        return;
    }
    if (use_.state.demo_mode) {
        show_demo_mode();
    }
    if (use_.state.first_tick_pending) {
        first_tick();
    }
    if (use_.state.demo_mode) {
        demo_generator_.generate(use_.data, use_.scales);
    }
    if (open_requested_view()) {
        return;
    }
    act_on_view();
    if (use_.state.demo_mode) {
        demo_generator_.generate(use_.data, use_.scales);
    }
}

void Polling::show_demo_mode() {
    for (const Entry& entry : demo_entries_) {
        if (use_.navigation.available(entry.view)) {
            entry.control->set_enabled(true);
        }
    }
    for (platform::Control* notice : demo_notices_) {
        notice->set_visible(true);
    }
}

// Stays pending, and is gone through at every tick, until the link is open.
void Polling::first_tick() {
    if (use_.state.comm_ready) {
        use_.state.first_tick_pending = false;
        use_.comm.poll({messages::scales_block.code}, messages::scales_block.reply);
        if (use_.state.demo_mode) {
            use_.scales.full_scale_rpm = demo_tachometer_rpm;
            const float red_line = red_line_share * demo_tachometer_rpm / 1000;
            tachometer_.set_scale(
                {.full_scale = red_line, .tick_step = 1, .zone_a_start = red_line * 0.9F, .zone_b_start = red_line});
        }
    }
    use_.data.rpm_filter_gain = first_filter_gain;
    use_.data.rpm_filter_state = 0;
}

// A view that sets a request may take its time to close, by a message box above all.
bool Polling::open_requested_view() {
    auto& requests = use_.state.pending_view_request;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        use_.ports.waiting.process_events();
        if (requests[i] && use_.state.current_view == View::none) {
            requests[i] = false;
            use_.navigation.open(view_of(static_cast<link::ViewRequest>(i)));
            return true;
        }
    }
    return false;
}

void Polling::act_on_view() {
    static constexpr std::array monitor_poll{messages::live_block, messages::live_block_two,
                                             messages::live_block_three};
    static constexpr std::array live_poll{messages::live_block};
    static constexpr std::array gauge_poll{messages::live_block, messages::live_block_two};
    static constexpr std::array capability_poll{messages::capability_word, messages::compatibility_word};

    const View view = use_.state.current_view;
    if (view != View::none && view != View::diagnostics && !use_.state.capabilities_loaded) {
        // Both, whatever the user does meanwhile: the first one's answer ends the asking for the whole run.
        for (const messages::Command& question : capability_poll) {
            ask(question);
        }
        if (!still_polls(view)) {
            return;
        }
    }
    switch (view) {
    case View::none:
        if (forget_monitor_strings) {
            forget_monitor_strings();
        }
        use_.state.last_activity_time = use_.ports.now();
        refresh(view);
        break;
    case View::monitor:
        if (use_.state.comm_aborted && leave_monitor) {
            leave_monitor();
        } else if (poll(view, monitor_poll)) {
            refresh(view);
        }
        break;
    case View::configuration:
        use_.state.last_activity_time = use_.ports.now();
        break;
    case View::plotter: // has a timer of its own
        break;
    case View::basic_mapping:
        if (poll(view, live_poll)) {
            refresh(view);
        }
        break;
    case View::additional_mapping:
    case View::dashboard:
    case View::gpo_mapping:
        if (poll(view, gauge_poll)) {
            refresh(view);
        }
        break;
    case View::diagnostics:
        if (diags_tab_.current() == dyno_tab) {
            poll(view, live_poll);
        }
        break;
    }
}

// Returns false as soon as the user has left the view or started a sequence of messages there.
bool Polling::poll(View view, std::span<const messages::Command> questions) {
    for (const messages::Command& question : questions) {
        ask(question);
        if (!still_polls(view)) {
            return false;
        }
    }
    return true;
}

void Polling::ask(const messages::Command& question) {
    use_.comm.poll({question.code}, question.reply);
    use_.ports.waiting.process_events();
}

bool Polling::still_polls(View view) const { return use_.state.current_view == view && !use_.state.polling_paused; }

void Polling::refresh(View view) {
    if (const auto& update = refresh_[index_of(view)]) {
        update();
    }
}

void Polling::timer3_tick() {
    static constexpr std::array rotation{messages::live_block, messages::live_block_two, messages::live_block,
                                         messages::live_block_three};
    if (use_.state.polling_paused || use_.state.current_view != View::plotter) {
        return;
    }
    const messages::Command& question = rotation[static_cast<std::size_t>(plotter_poll_step_)];
    use_.comm.poll({question.code}, question.reply);
    if (plot_and_log_sample) {
        plot_and_log_sample();
    }
    plotter_poll_step_ = (plotter_poll_step_ + 1) % static_cast<int>(rotation.size());
}

} // namespace ecu::shell
