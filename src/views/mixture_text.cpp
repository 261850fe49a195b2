#include "views/mixture_text.h"

#include "platform/display_mask.h"

namespace ecu::views {

using platform::masked;

std::string mixture_figure(float lambda, const calibration::Scales& scales) {
    return scales.shows_lambda ? masked(lambda, "#.000") : masked(scales.lambda_to_display(lambda), "##.00");
}

MixtureText mixture_text(const messages::EcuLiveData& live, const calibration::Scales& scales) {
    MixtureText text{mixture_figure(live.lambda, scales), scales.shows_lambda ? "Lambda" : "AFR"};
    if (!live.sensor_reads_lambda()) {
        text = {masked(live.oxygen_percent, "##.0"), "%O2"};
    }
    if (live.sensor_fault()) {
        text.figure = "ERR";
    }
    return text;
}

} // namespace ecu::views
