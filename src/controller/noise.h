// Reproducible chance: the same seed gives the same sequence on every machine (splitmix64).
#pragma once

#include <cstdint>

namespace ecu::controller {

class Noise {
public:
    explicit Noise(std::uint64_t seed) : state_(seed) {}

    std::uint64_t bits() {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }
    // From 0 up to below 1.
    double uniform() { return static_cast<double>(bits() >> 11U) * 0x1.0p-53; }
    // Around 0, between -1 and 1, small values the likeliest.
    double centred() { return uniform() - uniform(); }
    // 0 to `count` - 1; `count` is not 0.
    std::uint64_t below(std::uint64_t count) { return bits() % count; }

private:
    std::uint64_t state_;
};

} // namespace ecu::controller
