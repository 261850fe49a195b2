// The sixteen numbered colours of the classic PC text palette, by which the screens speak of state:
// yellow is pending, bright white is confirmed. A colour compares by value, so that a background can be
// set, read back and tested.
#pragma once

#include <array>
#include <cstdint>

namespace ecu::platform {

struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    friend constexpr bool operator==(Colour, Colour) = default;
};

inline constexpr std::array<Colour, 16> palette{{{0x00, 0x00, 0x00},
                                                 {0x00, 0x00, 0xAA},
                                                 {0x00, 0xAA, 0x00},
                                                 {0x00, 0xAA, 0xAA},
                                                 {0xAA, 0x00, 0x00},
                                                 {0xAA, 0x00, 0xAA},
                                                 {0xAA, 0x55, 0x00},
                                                 {0xAA, 0xAA, 0xAA},
                                                 {0x55, 0x55, 0x55},
                                                 {0x55, 0x55, 0xFF},
                                                 {0x55, 0xFF, 0x55},
                                                 {0x55, 0xFF, 0xFF},
                                                 {0xFF, 0x55, 0x55},
                                                 {0xFF, 0x55, 0xFF},
                                                 {0xFF, 0xFF, 0x55},
                                                 {0xFF, 0xFF, 0xFF}}};

inline constexpr Colour black = palette[0];
inline constexpr Colour light_red = palette[12];
inline constexpr Colour yellow = palette[14];
inline constexpr Colour bright_white = palette[15];

// The two states of a cell or box.
inline constexpr Colour pending = yellow;
inline constexpr Colour confirmed = bright_white;

} // namespace ecu::platform
