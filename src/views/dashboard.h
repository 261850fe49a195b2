// The behaviour of the dashboard: gauge scales, the lamp bar, the trims with their refusals, the kill switches, the
// tachometer filter and the choice of the output driver shown. The scheduler polls; refresh() shows what came.
#pragma once

#include "calibration/parameter_types.h"
#include "calibration/scales.h"
#include "link/ecu_comm.h"
#include "messages/live_data.h"
#include "shell/navigation.h"
#include "views/frm_dashboard.h"

#include <cstdint>

namespace ecu::views {

// The lamp of a mixture, 8 being lambda 1.0; a leaner one is lower, down to 0, a richer one higher, up to 16.
// `lambda` must not be 0.
std::size_t lamp_of(float lambda);

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

private:
    void wire();
    void scale_gauges();
    void scale_lamps();
    void show_mixture(float lambda);
    void send_trim(platform::TextBox& box, const calibration::Parameter& row);
    void trim_key(platform::TextBox& box, bool steps, platform::KeyPress& key);
    void leave();

    const platform::Ports& ports_;
    link::SharedState& state_;
    link::EcuComm& comm_;
    shell::Navigation& navigation_;
    calibration::Scales& scales_;
    messages::EcuLiveData& live_;
    FrmDashboard& form_;
    std::size_t lit_lamp_ = 0;
};

} // namespace ecu::views
