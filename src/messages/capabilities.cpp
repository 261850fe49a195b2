#include "messages/capabilities.h"

#include <initializer_list>
#include <string>

namespace ecu::messages {

namespace {

constexpr int phases = 16;
constexpr unsigned idle_bit = 8;
constexpr unsigned fuel_bit = 9;
constexpr unsigned ignition_bit = 10;
constexpr std::array<unsigned, 4> output_frame_bits{11, 12, 13, 13};

// Adds the control of each name, or every element where the name is an array's.
void add(std::vector<platform::Control*>& controls, const platform::Form& form,
         std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names) {
        const std::size_t before = controls.size();
        for (platform::Control* control : form.controls()) {
            if (control->name() == name) {
                controls.push_back(control);
            }
        }
        if (controls.size() == before) {
            throw std::logic_error("form " + form.name() + " has no control " + std::string(name));
        }
    }
}

void enable(const std::vector<platform::Control*>& controls, bool enabled) {
    for (platform::Control* control : controls) {
        control->set_enabled(enabled);
    }
}

} // namespace

Capabilities::Capabilities(const platform::FormRegistry& forms) {
    const platform::Form& tool = forms.at("frm_tool");
    const platform::Form& corrections = forms.at("frm_2d");
    const platform::Form& dashboard = forms.at("frm_dashboard");
    const platform::Form& outputs = forms.at("frm_sup");

    for (int phase = 0; phase < phases; ++phase) {
        for (std::size_t box = 0; box < injector_boxes_.size(); ++box) {
            const int index = static_cast<int>(box);
            injector_boxes_[box].push_back(&tool.at("inj_ph_" + std::to_string(phase), index));
            ignition_boxes_[box].push_back(&tool.at("ign_ph_" + std::to_string(phase), index));
        }
    }
    add(idle_, tool,
        {"iac_close_steps", "iac_open_steps", "iac_enable_tps_val", "iac_close_tps_val", "iac_max_rate",
         "iac_error_rate", "iac_deadband"});
    add(idle_, corrections, {"idle_rpm_map"});
    add(fuel_, tool,
        {"accel_senitivity", "accel_flt_rate", "accel_pw_min", "accel_pw_max", "EGO_reset_pw", "min_pressure",
         "bat_comp", "inj_offset", "inj_gain", "ego_rate", "EGO_Prop_Gain", "ego_seconds", "min_ego_gain",
         "max_ego_gain", "priming_pw_cold", "num_pulses_cold", "temp_threshold", "priming_pw_hot"});
    add(fuel_, dashboard, {"ecu_pgm", "kill_ego"});
    add(fuel_, corrections, {"clt_map", "mat_data", "baro_gain", "Pressure_Gain"});
    add(ignition_, tool, {"base_offset_deg", "target_dwell", "min_dwell_deg"});
    for (std::size_t i = 0; i < output_frames_.size(); ++i) {
        output_frames_[i] = &outputs.at("GPO_params", static_cast<int>(i));
    }
}

void Capabilities::apply(std::uint16_t word) {
    word_ = word;
    const auto has = [word](unsigned bit) { return ((word >> bit) & 1U) != 0; };
    const std::size_t injectors = word & 0xFU;
    const std::size_t coils = (word >> 4) & 0xFU;
    for (std::size_t box = 0; box < injector_boxes_.size(); ++box) {
        enable(injector_boxes_[box], box < injectors);
        enable(ignition_boxes_[box], box < coils);
    }
    enable(idle_, has(idle_bit));
    enable(fuel_, has(fuel_bit));
    enable(ignition_, has(ignition_bit));
    for (std::size_t i = 0; i < output_frames_.size(); ++i) {
        output_frames_[i]->set_visible(has(output_frame_bits[i]));
    }
}

} // namespace ecu::messages
