// The word by which the controller tells how many drivers it has and which functions are built in, and what that
// means on the screens: controls of a function that the controller lacks are disabled, frames of missing output
// drivers are hidden. The controls belong to forms on higher floors and are found by name.
//   bits 0-3   injector drivers      bit 8   idle control      bits 11, 12  output driver 1, 2
//   bits 4-7   ignition drivers      bit 9   fuel control      bit 13       output drivers 3 and 4
//                                    bit 10  ignition control
#pragma once

#include "platform/form.h"

#include <array>
#include <cstdint>
#include <vector>

namespace ecu::messages {

class Capabilities {
public:
    // Throws std::logic_error naming the first control that the forms lack.
    explicit Capabilities(const platform::FormRegistry& forms);

    void apply(std::uint16_t word);
    std::uint16_t word() const { return word_; } // 0 until the controller has answered

private:
    using Controls = std::vector<platform::Control*>;
    // Element i holds box i of each of the sixteen phases' arrays.
    using DriverBoxes = std::array<Controls, 8>;

    DriverBoxes injector_boxes_;
    DriverBoxes ignition_boxes_;
    Controls idle_;
    Controls fuel_;
    Controls ignition_;
    std::array<platform::Control*, 4> output_frames_;
    std::uint16_t word_ = 0;
};

} // namespace ecu::messages
