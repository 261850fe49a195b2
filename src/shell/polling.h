// The heart of the console: two timers that ask the controller for what the open view lives on and refresh that view.
// A tick never starts while another tick or a transaction runs; one that fell due meanwhile runs as soon as it may,
// so that polling goes as fast as the wire. While polling_paused is set a tick does nothing.
// The views are on higher floors; they hook their refreshing in.
#pragma once

#include "calibration/scales.h"
#include "messages/catalogue.h"
#include "messages/live_data.h"
#include "platform/gauge.h"
#include "shell/demo_generator.h"
#include "shell/frm_ecu.h"
#include "shell/navigation.h"

#include <memory>
#include <vector>

namespace ecu::shell {

class Polling {
public:
    struct Use {
        const platform::Ports& ports;
        link::SharedState& state;
        messages::EcuLiveData& data;
        calibration::Scales& scales;
        link::EcuComm& comm;
        Navigation& navigation;
        FrmEcu& main_form;
        const platform::FormRegistry& forms;
    };
    // Throws std::logic_error naming the first control that the forms lack.
    explicit Polling(const Use& use);

    void start(); // both timers, for the rest of the run
    // The view's display update, run after its messages; at most one a view.
    void on_refresh(link::View view, std::function<void()> refresh);
    std::function<void()> forget_monitor_strings; // with no view open: the monitor draws everything when it comes
    std::function<void()> leave_monitor;          // after "Abort"
    std::function<void()> plot_and_log_sample;    // after each message of the plotter

    platform::Timer& timer1() { return *timer1_; }
    platform::Timer& timer3() { return *timer3_; }
    int plotter_poll_step() const { return plotter_poll_step_; }

private:
    struct Entry {
        platform::Control* control;
        link::View view;
    };
    using Tick = void (Polling::*)();

    void run_or_defer(Tick tick, bool& overdue);
    void run_overdue(Tick tick, bool& overdue);
    void timer1_tick();
    void timer3_tick();
    void show_demo_mode();
    void first_tick();
    bool open_requested_view();
    void act_on_view();
    bool poll(link::View view, std::span<const messages::Command> questions);
    void ask(const messages::Command& question);
    bool still_polls(link::View view) const; // neither left nor paused by what the user did meanwhile
    void refresh(link::View view);

    Use use_;
    DemoGenerator demo_generator_;
    std::unique_ptr<platform::Timer> timer1_;
    std::unique_ptr<platform::Timer> timer3_;
    std::array<std::function<void()>, 9> refresh_;
    std::vector<Entry> demo_entries_;
    std::vector<platform::Control*> demo_notices_;
    platform::Gauge& tachometer_;
    const platform::Tabs& diags_tab_;
    bool ticking_ = false;
    bool timer1_overdue_ = false;
    bool timer3_overdue_ = false;
    int plotter_poll_step_ = 0;
};

} // namespace ecu::shell
