#include "messages/capabilities.h"

#include "console/forms.h"
#include "support/sim_desktop.h"

#include <gtest/gtest.h>

#include <set>

namespace ecu::messages {
namespace {

// The controls whose enabled state (of frames: visible state) differs after `word` from that after `before`.
std::set<std::string> changed_by(std::uint16_t before, std::uint16_t word) {
    test::SimDesktop desktop;
    console::Forms forms{desktop};
    Capabilities capabilities(forms.registry);
    const auto states = [&forms] {
        std::map<std::string, std::pair<bool, bool>> all;
        for (const platform::Form* form : forms.registry.forms()) {
            for (const platform::Control* control : form->controls()) {
                all[form->name() + "." + control->full_name()] = {control->enabled(), control->visible()};
            }
        }
        return all;
    };
    capabilities.apply(before);
    const auto then = states();
    capabilities.apply(word);
    std::set<std::string> changed;
    for (const auto& [name, state] : states()) {
        if (state != then.at(name)) {
            changed.insert(name);
        }
    }
    return changed;
}

std::set<std::string> elements(const std::string& array, int first, int last) {
    std::set<std::string> names;
    for (int i = first; i <= last; ++i) {
        names.insert(array + "(" + std::to_string(i) + ")");
    }
    return names;
}

TEST(Capabilities, DriverCountsLeaveOnlyThatManyBoxesOfEveryPhase) {
    for (const auto& [shift, array] : {std::pair{0, "frm_tool.inj_ph_"}, std::pair{4, "frm_tool.ign_ph_"}}) {
        std::set<std::string> beyond;
        for (int phase = 0; phase < 16; ++phase) {
            beyond.merge(elements(array + std::to_string(phase), 3, 7));
        }
        EXPECT_EQ(changed_by(0x3FFF, static_cast<std::uint16_t>(0x3FFF & ~(12 << shift))), beyond) << array;
        EXPECT_EQ(changed_by(0x3F88, 0x3FFF).size(), 0U) << "more drivers than boxes";
    }
}

TEST(Capabilities, EachFunctionBitActsOnItsOwnControlsOnly) {
    std::set<std::string> idle = elements("frm_2d.idle_rpm_map", 0, 8);
    for (const char* name : {"iac_close_steps", "iac_open_steps", "iac_enable_tps_val", "iac_close_tps_val",
                             "iac_max_rate", "iac_error_rate", "iac_deadband"}) {
        idle.insert(std::string("frm_tool.") + name);
    }
    std::set<std::string> fuel{"frm_dashboard.ecu_pgm(0)", "frm_dashboard.ecu_pgm(1)", "frm_dashboard.kill_ego"};
    for (const char* name :
         {"accel_senitivity", "accel_flt_rate", "accel_pw_min", "accel_pw_max", "EGO_reset_pw", "min_pressure",
          "bat_comp", "ego_rate", "EGO_Prop_Gain", "ego_seconds", "min_ego_gain", "max_ego_gain", "priming_pw_cold",
          "num_pulses_cold", "temp_threshold", "priming_pw_hot"}) {
        fuel.insert(std::string("frm_tool.") + name);
    }
    fuel.merge(elements("frm_tool.inj_offset", 0, 7));
    fuel.merge(elements("frm_tool.inj_gain", 0, 7));
    for (const char* name : {"clt_map", "mat_data", "baro_gain", "Pressure_Gain"}) {
        fuel.merge(elements(std::string("frm_2d.") + name, 0, 8));
    }
    const std::set<std::string> ignition{"frm_tool.base_offset_deg", "frm_tool.target_dwell", "frm_tool.min_dwell_deg"};
    const std::vector<std::pair<int, std::set<std::string>>> by_bit{
        {8, idle},
        {9, fuel},
        {10, ignition},
        {11, {"frm_sup.GPO_params(0)"}},
        {12, {"frm_sup.GPO_params(1)"}},
        {13, {"frm_sup.GPO_params(2)", "frm_sup.GPO_params(3)"}},
        {14, {}}};
    for (const auto& [bit, controls] : by_bit) {
        EXPECT_EQ(changed_by(0x3F88, static_cast<std::uint16_t>(0x3F88 ^ (1 << bit))), controls) << bit;
        EXPECT_EQ(changed_by(0x0088, static_cast<std::uint16_t>(0x0088 | (1 << bit))), controls) << bit;
    }
}

} // namespace
} // namespace ecu::messages
