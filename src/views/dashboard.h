// The behaviour of the dashboard: gauge scales, the lamp bar, the trims with their refusals, the kill switches, the
// tachometer filter and the choice of the output driver shown. The scheduler polls; refresh() shows what came.
#pragma once

#include "calibration/parameter_types.h"
#include "calibration/scales.h"
#include "editing/editor_items.h"
#include "link/ecu_comm.h"
#include "messages/live_data.h"
#include "shell/navigation.h"
#include "views/frm_dashboard.h"

#include <array>
#include <functional>

namespace ecu::views {

// The lamp of a mixture, 8 being lambda 1.0; a leaner one is lower, down to 0, a richer one higher, up to 16.
// `lambda` must not be 0.
std::size_t lamp_of(float lambda);

// Lambda at the mark lambda_label(i) of the bar: 1.4 for the first, down to 0.6.
constexpr double mark_lambda(std::size_t label) { return (14 - static_cast<double>(label)) / 10; }

// The tachometer's scale in thousands of rpm. The last tenth before full scale is zone b, the tenth below it zone a.
platform::Gauge::Scale tachometer_scale(float full_scale_rpm);

class Dashboard {
public:
    Dashboard(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
              shell::Navigation& navigation, calibration::Scales& scales, messages::EcuLiveData& live,
              FrmDashboard& form);

    void activate();
    void refresh(); // after each poll
    void update();  // sends the changed trims
    void filter_tachometer(std::size_t item);
    void view_gpo(std::size_t channel);

    std::function<void()> held_changed; // timing or oxygen control was held back or let go

private:
    void wire();
    void tell_held();
    void scale_gauges();
    void scale_lamps();
    void show_mixture(float lambda);
    void open();
    void send_trims();
    void trim_key(platform::TextBox& box, bool steps, platform::KeyPress& key);
    void ask_controller();
    void read_again();
    void note_changed();
    void show_status();
    std::string show_place(platform::Control& control) const;
    void leave();

    const platform::Ports& ports_;
    link::SharedState& state_;
    link::EcuComm& comm_;
    shell::Navigation& navigation_;
    calibration::Scales& scales_;
    messages::EcuLiveData& live_;
    FrmDashboard& form_;
    editing::EditorLink link_;
    std::array<editing::BoxItem, 3> trims_; // in the order in which they are sent
    editing::Tally tally_;                  // of the last Update
    std::size_t lit_lamp_ = 0;
    bool opening_ = false; // the trims are being read: none may be sent
    bool change_posted_ = false;
    bool other_controller_ = false; // an Update has ended at one: the trims shown are not that one's
    bool updating_ = false;         // one Update at a time;
    bool update_again_ = false;     // asked for meanwhile, another follows it
};

} // namespace ecu::views
