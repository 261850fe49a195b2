#include "calibration/calibration_image.h"

#include <cmath>
#include <stdexcept>

namespace ecu::calibration {

namespace {

// Where each row's first element stands.
constexpr auto first_elements = [] {
    std::array<std::size_t, parameters.size()> first{};
    for (std::size_t row = 1; row < parameters.size(); ++row) {
        first.at(row) = first.at(row - 1) + parameters.at(row - 1).count;
    }
    return first;
}();

constexpr const Parameter& full_scale = parameter("FS_RPM");
constexpr const Parameter& sensor_type = parameter("MAP_TYPE");
constexpr const Parameter& boost_flags = parameter("BOFG");

} // namespace

std::size_t CalibrationImage::place(const Parameter& row, int i) {
    if (i < 0 || i >= row.count) {
        throw std::out_of_range("no such element of " + std::string(row.key));
    }
    return first_elements.at(index_of(row)) + static_cast<std::size_t>(i);
}

std::int32_t CalibrationImage::raw(const Parameter& row, int i) const {
    if (&row == &full_scale) {
        return static_cast<std::int32_t>(std::lround(scales_.full_scale_rpm));
    }
    return values_.at(place(row, i));
}

void CalibrationImage::store(const Parameter& row, int i, std::int32_t raw) {
    values_.at(place(row, i)) = raw;
    known_.at(place(row, i)) = true;
    if (&row == &full_scale) {
        scales_.full_scale_rpm = static_cast<float>(raw);
    } else if (&row == &sensor_type) {
        const PressureSensor& sensor = pressure_sensors.at(static_cast<std::size_t>(raw & 3));
        scales_.map_span = sensor.span;
        scales_.map_base = sensor.base;
    } else if (&row == &boost_flags && i == 0) {
        scales_.boost_as_pwm = (raw & boost_as_pwm_bit) != 0;
    }
}

} // namespace ecu::calibration
