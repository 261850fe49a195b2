// The behaviour of the plotter: the log from start to stop, the sample interval, and what goes to the chart. The
// scheduler's Timer3 is the sample clock: after each message it calls plot_and_log_sample, whether or not the message
// was answered, so that a row is written at every tick.
#pragma once

#include "calibration/scales.h"
#include "link/ecu_comm.h"
#include "logging/frm_plotter.h"
#include "logging/log_file.h"
#include "messages/live_data.h"
#include "platform/timers.h"
#include "shell/navigation.h"

namespace ecu::logging {

// The monitor's labels whose shown numbers three channels plot. They stand still while the plotter is the open view.
struct MonitorLabels {
    const platform::Label& inj_duty;
    const platform::Label& ign_duty;
    const platform::Label& wheel_idx_num;
};

class Plotter {
public:
    Plotter(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm, shell::Navigation& navigation,
            platform::Timer& timer3, const calibration::Scales& scales, const messages::EcuLiveData& live,
            MonitorLabels monitor, FrmPlotter& form);

    void activate();
    void take_over();
    void start_logging();
    void stop_logging();
    void plot_and_log_sample();
    void set_interval(std::size_t item); // of menu_log_int
    bool logging_active() const { return logging_active_; }
    std::int32_t log_sample_count() const { return file_.rows(); }

private:
    void wire();
    void show_interval();
    void note_scales();
    void note_scale(std::size_t channel, float span, std::string_view caption);
    void choose_file();
    void show_file_note();
    bool chart_runs() const;
    void show_hint();
    void save_chart_picture();
    void stamp();
    void log_failed(const std::string& reason);
    void set_logging(bool active);
    void leave();
    std::array<float, channel_count> fractions() const;

    const platform::Ports& ports_;
    link::SharedState& state_;
    link::EcuComm& comm_;
    shell::Navigation& navigation_;
    platform::Timer& timer3_;
    const calibration::Scales& scales_;
    const messages::EcuLiveData& live_;
    MonitorLabels monitor_;
    FrmPlotter& form_;
    LogFile file_;
    std::string log_file_name_; // as it stood in plot_file at the start
    bool logging_active_ = false;
};

} // namespace ecu::logging
