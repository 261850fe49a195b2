#include "shell/demo_generator.h"

namespace ecu::shell {

float DemoGenerator::around(double base, double width) {
    constexpr double steps = 1U << 24U; // as many as single precision tells apart
    return static_cast<float>(static_cast<double>(random_() >> 8U) / steps * width + base);
}

void DemoGenerator::generate(messages::EcuLiveData& data, calibration::Scales& scales) {
    scales.full_scale_rpm = 8000;
    data.engine_rpm = around(3210, 50);
    data.coolant_temp = around(92, 2);
    data.air_temp = around(23, 2);
    data.throttle_percent = around(15, 1.5);
    data.throttle_raw_percent = data.throttle_percent;
    data.lambda = around(1.0, 0.17);
    data.manifold_kpa = around(32, 0.4);
    data.injector_pw = around(0.0081, 0.0002);
    data.ego_correction = around(1.0, 0.05);
    data.map_enrichment = around(0.95, 0.05);
    data.clt_enrichment = 1.02F;
    data.aux_egt = around(150, 0.4);
    data.battery_volts = around(14.2, 0.2);
    data.baro_kpa = 101.2F;
    data.ignition_timing = 6.25F;
}

} // namespace ecu::shell
