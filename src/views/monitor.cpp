#include "views/monitor.h"

#include "platform/display_mask.h"
#include "views/mixture_text.h"

#include <algorithm>

namespace ecu::views {

namespace {

using platform::masked;
using Row = FrmMon::Row;

std::string_view idle_valve_state(std::int32_t state) {
    static constexpr std::array<std::string_view, 6> texts{"SHTDWN", "HOME", "ST_POS", "OPENING", "CLOSING", "CLOSED"};
    return state >= 1 && state <= static_cast<int>(texts.size()) ? texts[static_cast<std::size_t>(state - 1)] : "????";
}

// The magnitude, and whether it is before or after top dead centre.
std::string timing_text(float degrees) {
    return degrees < 0 ? masked(-degrees, "##0.00") + "A" : masked(degrees, "##0.00") + "B";
}

} // namespace

Monitor::Monitor(const platform::Ports& ports, link::SharedState& state, messages::EcuLiveData& data,
                 const calibration::Scales& scales, shell::Navigation& navigation, shell::Polling& polling,
                 FrmMon& form)
    : ports_(ports), state_(state), data_(data), scales_(scales), navigation_(navigation), form_(form) {
    form_.form.on_activate = [this] { activate(); };
    form_.form.on_unload = [this] { navigation_.view_closed(form_.form); };
    form_.exit_button.clicked = [this] { form_.form.unload(); };
    form_.menufileexit.clicked = [this] { form_.form.unload(); };

    // No reply forms these marks, so the rows that bear one are written at the next refresh.
    navigation_.add_view(link::View::monitor, form_.form);
    navigation_.before_monitor = [this] { mark_shown(14, "xxox"); };
    polling.forget_monitor_strings = [this] { mark_shown(12, "ABCDDBCD"); };
    polling.leave_monitor = [this] { form_.exit_button.press(); };
    polling.on_refresh(link::View::monitor, [this] { refresh_monitor_strings(); });
}

void Monitor::activate() {
    state_.last_activity_time = ports_.now();
    form_.form.set_caption("Real Time Monitor" + state_.link_title_suffix);
    unit_text_ = scales_.shows_lambda ? "Lambda" : "AFR";
    form_.unit_of_lambda.set_text(unit_text_);
    form_.unit_of_setpoint.set_text(unit_text_);
}

void Monitor::mark_shown(std::size_t count, std::string_view mark) { std::fill_n(shown_.begin(), count, mark); }

void Monitor::refresh_monitor_strings() {
    data_.engine_rpm = std::min(data_.engine_rpm, 40000.0F);
    data_.throttle_percent = std::min(data_.throttle_percent, 100.0F);
    data_.coolant_temp = std::min(data_.coolant_temp, 125.0F);
    form_strings();
    form_.tx_bytes.set_text(std::to_string(state_.tx_byte_count[0]));
    form_.rx_bytes.set_text(std::to_string(state_.rx_byte_count[0]));
    for (std::size_t row = 0; row < rows; ++row) {
        if (wanted_[row] != shown_[row]) {
            form_.ECU_Data[row].set_text(wanted_[row]);
            shown_[row] = wanted_[row];
            ports_.waiting.process_events();
        }
    }
}

void Monitor::form_strings() {
    wanted_[Row::engine_speed] = masked(data_.engine_rpm, "###0");
    form_mixture_strings();
    wanted_[Row::coolant] = masked(data_.coolant_temp, "##0");
    wanted_[Row::throttle] = masked(data_.throttle_raw_percent, "##0.0");
    wanted_[Row::manifold] = masked(data_.manifold_kpa, "###.0");
    wanted_[Row::injection_time] = masked(data_.injector_pw * 1000, "##.##0");
    wanted_[Row::ego_correction] = masked(data_.ego_correction, "0.000");
    wanted_[Row::map_enrichment] = masked(data_.map_enrichment, "0.000");
    wanted_[Row::accel_enrichment] = masked(data_.accel_enrichment, "##.000");
    wanted_[Row::clt_enrichment] = masked(data_.clt_enrichment, "0.000");
    wanted_[Row::battery] = masked(data_.battery_volts, "#0.00");
    wanted_[Row::air_temperature] = masked(data_.air_temp, "##0");
    wanted_[Row::aux_input] = masked(data_.aux_volts, "0.000");
    wanted_[Row::barometer] = masked(data_.baro_kpa, "###.0");
    wanted_[Row::idle_state] = idle_valve_state(data_.iac_state);
    wanted_[Row::idle_error] = data_.iac_error == 0 ? "OK" : "ERR" + std::to_string(data_.iac_error);
    wanted_[Row::idle_position] = masked(data_.iac_position, "###0");
    wanted_[Row::idle_setpoint] = masked(data_.iac_rpm_setpoint, "###0");
    wanted_[Row::timing] = timing_text(data_.ignition_timing);
}

void Monitor::form_mixture_strings() {
    const MixtureText mixture = mixture_text(data_, scales_);
    wanted_[Row::mixture] = mixture.figure;
    form_.unit_of_lambda.set_text(data_.sensor_reads_lambda() ? unit_text_ : mixture.unit);
    form_.ego_lambda_setpoint.set_text(mixture_figure(data_.ego_lambda_setpoint, scales_));
}

} // namespace ecu::views
