// Autotune: applies two grids of gain factors, entered by hand, to the fuel and TPS fuel maps of the basic mapping
// window in one step. The log loader reduces a row to rates of change and stops there; the counts and samples per
// cell are kept and cleared, and nothing else uses them.
#pragma once

#include "autotune/frm_autotune.h"
#include "calibration/scales.h"
#include "link/shared_state.h"
#include "maps/frm_3d.h"
#include "platform/ports.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace ecu::autotune {

// One row of a log as the loader hands it on, by reference.
struct LogRow {
    float dt = 0;
    float d_map = 0, d_rpm = 0, d_tps = 0, d_lambda = 0;
    float corr = 0, ego_sp = 0;
    std::int16_t map_c = 0, rpm_c = 0, tps_c = 0;
    float map_r = 0, rpm_r = 0, tps_r = 0;
    float tps_pcnt = 0;
};

class Autotune {
public:
    // Takes over the menu item menu_autotune of the basic mapping window.
    Autotune(const platform::Ports& ports, link::SharedState& state, FrmAutotune& form, maps::Frm3d& frm_3d,
             const calibration::Scales& scales);

    void autotune_reset();
    // False when a rate of change cannot be formed: the loader ends there.
    bool autotune_routine(LogRow& row);

private:
    using Samples = std::vector<std::array<float, 256>>; // by sample slot, then cell

    void open();
    void leave();
    void size_grids();
    void label_axes();
    void apply_to_maps();
    void load_logfile();

    const platform::Ports& ports_;
    link::SharedState& state_;
    FrmAutotune& form_;
    maps::Frm3d& frm_3d_;
    const calibration::Scales& scales_;
    int applied_ = 0; // how often since the factors were last emptied
    std::array<std::int16_t, 256> inj_point_count_{};
    std::array<std::int16_t, 256> tps_point_count_{};
    Samples inj_point_samples_{100};
    Samples tps_point_samples_{100};
};

} // namespace ecu::autotune
