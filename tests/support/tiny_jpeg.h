// The smallest file that the console takes for a picture. It has no tables, so that nothing can draw it.
#pragma once

#include <string_view>

namespace ecu::test {

inline constexpr std::string_view tiny_jpeg{"\xFF\xD8"                                     // start
                                            "\xFF\xC0\0\x0B\x08\0\x01\0\x01\x01\x01\x11\0" // frame
                                            "\xFF\xDA\0\x08\x01\x01\0\0\x3F\0?"            // scan
                                            "\xFF\xD9",                                    // end
                                            28};

} // namespace ecu::test
