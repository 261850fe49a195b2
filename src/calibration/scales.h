// The spans by which raw numbers become engineering values wherever the encoding alone does not tell: the manifold
// sensor, the engine's rpm range, the meaning of the boost maps, and the unit of the air/fuel figure. One instance,
// shared; CalibrationImage keeps all but the unit in step with what the controller reported.
#pragma once

namespace ecu::calibration {

struct Scales {
    float map_span = 115;         // kPa; set by the sensor type of a C reply or the echo of 130
    float map_base = 10;          // kPa
    float full_scale_rpm = 10000; // FS_RPM, the rpm of a full 10-bit value
    bool boost_as_pwm = false;    // bit 1 of BOFG(0): all four boost maps hold duty, not pressure
    float lambda_scale = 1.0F;    // what lambda is multiplied with on its way to the screen

    float lambda_to_display(float lambda) const { return lambda_scale * lambda; }
    float lambda_from_display(float shown) const { return shown / lambda_scale; }
    bool shows_lambda = true; // the units menu stands on lambda itself (its item 0)
};

} // namespace ecu::calibration
