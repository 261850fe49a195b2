// The mixture as the screens show it: in the chosen unit, as oxygen where the sensor reads that, or as a fault.
#pragma once

#include "calibration/scales.h"
#include "messages/live_data.h"

#include <string>
#include <string_view>

namespace ecu::views {

struct MixtureText {
    std::string figure;
    std::string_view unit; // "Lambda", "AFR" or "%O2"
};

std::string mixture_figure(float lambda, const calibration::Scales& scales);
MixtureText mixture_text(const messages::EcuLiveData& live, const calibration::Scales& scales);

} // namespace ecu::views
