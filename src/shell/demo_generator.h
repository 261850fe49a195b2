// Plausible live data of a warm engine under light load for demo mode, made anew at every call. The flags stay as they
// are, so that the sensor counts as one that reads oxygen.
#pragma once

#include "calibration/scales.h"
#include "messages/live_data.h"

#include <random>

namespace ecu::shell {

class DemoGenerator {
public:
    explicit DemoGenerator(std::uint32_t seed = std::mt19937::default_seed) : random_(seed) {}
    void generate(messages::EcuLiveData& data, calibration::Scales& scales);

private:
    // Uniform from `base` up to below `base` + `width`.
    float around(double base, double width);

    std::mt19937 random_;
};

} // namespace ecu::shell
