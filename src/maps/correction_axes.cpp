#include "maps/correction_axes.h"

#include "platform/display_mask.h"

#include <cmath>
#include <string>

namespace ecu::maps {

namespace {

constexpr float last_point = 8;
constexpr float aux_volts = 3.3F;
constexpr float coldest = -13; // degrees C at the first point
constexpr float temperature_span = 128;
constexpr float barometric_span = 115; // kPa, whatever sensor the manifold has
constexpr float barometric_base = 10;
constexpr float battery_volts = 20; // the full scale of the controller's battery reading

std::string whole(float value) { return platform::masked(std::trunc(value), "0"); }

} // namespace

void label_correction_axes(Frm2d& form, const calibration::Scales& scales) {
    for (std::size_t i = 0; i <= static_cast<std::size_t>(last_point); ++i) {
        const float point = static_cast<float>(i);
        for (Frm2d::Axis* axis : {&form.Label1, &form.Label16}) {
            (*axis)[i].set_text(platform::masked(point * aux_volts / last_point, "0.000"));
        }
        for (Frm2d::Axis* axis :
             {&form.Label6, &form.Label2, &form.Label10, &form.Label11, &form.Label15, &form.Label17}) {
            (*axis)[i].set_text(whole(point * temperature_span / last_point + coldest));
        }
        for (Frm2d::Axis* axis : {&form.Label3, &form.Label7}) {
            (*axis)[i].set_text(platform::plain_number(point * scales.full_scale_rpm / last_point));
        }
        for (Frm2d::Axis* axis : {&form.Label4, &form.Label5, &form.Label14}) {
            (*axis)[i].set_text(whole(std::trunc(point / last_point * scales.map_span) + scales.map_base));
        }
        for (Frm2d::Axis* axis : {&form.Label9, &form.Label13, &form.Label12}) {
            (*axis)[i].set_text(whole(std::trunc(point / last_point * barometric_span) + barometric_base));
        }
        form.battery_axis[i].set_text(platform::plain_number(point * battery_volts / last_point));
    }
}

} // namespace ecu::maps
