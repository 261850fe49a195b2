// The autotune screen: two grids of gain factors, entered by hand, for the fuel map and the TPS fuel map. The
// stability criteria, the two counts and the capture menu are there to be seen and idle.
#pragma once

#include "platform/form.h"
#include "platform/grid.h"

namespace ecu::autotune {

struct FrmAutotune {
    platform::Form form{"frm_autotune", "Autotune"};

    platform::MenuItem menu_load_logfile{form, "menu_load_logfile", "&Load Logfile"};
    platform::MenuItem menu_realtime_capture{form, "menu_realtime_capture", "&Realtime Capture"};
    platform::MenuItem menu_realtime_capture_start{menu_realtime_capture, "menu_realtime_capture_start", "&Start"};
    platform::MenuItem menu_realtime_capture_halt{menu_realtime_capture, "menu_realtime_capture_halt", "&Halt"};

    platform::Tabs autotune_tabs{form, "autotune_tabs"}; // "Injection Map", "TPS Map"
    platform::Grid autotune_inj_factors{form, "autotune_inj_factors", 16, 16};
    platform::Grid autotune_tps_factors{form, "autotune_tps_factors", 16, 16};

    // The marks along the axes, as the maps' own.
    platform::ControlArray<platform::Label, 9> speed_axis{form, "speed_axis"};
    platform::ControlArray<platform::Label, 17> pressure_axis{form, "pressure_axis"}; // 0 at the bottom
    platform::ControlArray<platform::Label, 17> throttle_axis{form, "throttle_axis"};
    platform::Label applied{form, "applied"}; // what the last Apply did
    platform::TextBox map_stability_criteria{form, "map_stability_criteria", "3.0"};
    platform::TextBox Text1{form, "Text1", "50.0"};
    platform::TextBox Text2{form, "Text2", "0.05"};
    platform::Label datapts_accepted{form, "datapts_accepted", "0"};
    platform::Label datapts_rejected{form, "datapts_rejected", "0"};

    platform::Button apply_to_maps{form, "apply_to_maps", "Apply to maps"};
    platform::Button reset_autotune_params{form, "reset_autotune_params", "Reset Autotune"};
    platform::Button exit_button{form, "Command3d1", "Exit"};

    FrmAutotune() {
        constexpr std::string_view gain_tip =
            "This 3D map allows you to configure gain multipliers, which are applied to the MAP/TPS sensor as the "
            "engine load indicator.  Values greater than 1 will inject more fuel, values less than 1 will inject less "
            "fuel.";
        autotune_inj_factors.set_tool_tip(gain_tip);
        autotune_tps_factors.set_tool_tip(gain_tip);
        exit_button.set_tool_tip("Click to exit back to the console");
    }
};

} // namespace ecu::autotune
