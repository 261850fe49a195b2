// The live state of the engine, filled by the decoders of the polled replies A, 129 and 207 and read by every view,
// the log and the dyno. One instance, shared. Single precision unless the controller counts in integers.
#pragma once

#include <array>
#include <cstdint>

namespace ecu::messages {

// What a sensor that reads oxygen leaves in `lambda`, so that nothing mistakes it for a rich mixture.
inline constexpr float lean_beyond_doubt = 2.0F;

struct EcuLiveData {
    // Reply A
    std::int32_t can_rx_frames = 0;
    std::int32_t status_flags = 0; // bit 0: the sensor reads lambda; 256 or more: sensor fault
    float ego_lambda_setpoint = 0; // lambda
    float lambda = 0;              // 2.0 with a sensor that reads oxygen
    float oxygen_percent = 0;
    float tps_pcnt = 0;     // %, at most 100
    float injector_pw = 0;  // seconds
    float coolant_temp = 0; // degrees C
    float air_temp = 0;
    float battery_volts = 0;
    std::uint8_t ego_correction_raw = 0;
    float ego_correction = 0; // ratio
    std::uint8_t map_enrichment_raw = 0;
    float map_enrichment = 0;
    float accel_enrichment = 0; // ms
    float clt_enrichment = 0;
    float baro_kpa = 0;
    float ignition_timing = 0; // degrees before top dead centre
    std::uint8_t input_flags = 0;
    float manifold_kpa = 0;
    float engine_rpm = 0; // filtered
    std::int32_t engine_rpm_raw = 0;
    float throttle_raw_percent = 0;
    float throttle_percent = 0; // held to 0 to 100
    std::uint8_t map_cell = 0, map_rem = 0, rpm_cell = 0, rpm_rem = 0, tps_cell = 0, tps_rem = 0;
    float map_position = 0, rpm_position = 0, tps_position = 0; // 0 to 1 along the axis
    std::uint8_t dyno_state = 0;
    std::int32_t dyno_samples = 0;
    std::int32_t wb_feedback = 0, wb_pump_current = 0, wb_pump_dac = 0, wb_heater_pw = 0, wb_heater_temp = 0;
    float egt = 0; // degrees C

    // Reply 129
    std::int32_t map_num = 0, num_trigs = 0, num_cams = 0, wheel_idx_num = 0, cam_idx_num = 0, cpu_secs = 0;
    std::int32_t err_flgs = 0;
    float speed_MPH = 0;
    float rpm_mph_ratio = 0;
    std::int32_t gear_number = 0;
    std::array<float, 4> gpo_duty{}; // %
    float aux_volts = 0;
    float aux_egt = 0;
    std::int32_t iac_state = 0, iac_error = 0, iac_position = 0, iac_rpm_setpoint = 0;

    // Reply 207; the console keeps sixteen duties a kind, of which eight are filled
    std::array<float, 8> inj_pw{};           // ms
    std::array<float, 8> ign_dwell{};        // ms
    std::array<std::int16_t, 16> inj_duty{}; // %
    std::array<std::int16_t, 16> ign_duty{};

    // Tachometer smoothing
    float rpm_filter_gain = 0; // 0.8 from the first tick on; the dashboard's menu changes it
    float rpm_filter_state = 0;

    bool sensor_reads_lambda() const { return (status_flags & 1) != 0; }
    bool sensor_fault() const { return status_flags >= 256; }
};

} // namespace ecu::messages
