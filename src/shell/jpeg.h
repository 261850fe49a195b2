// A look at the picture of the installation before every window tries in vain to draw it.
#pragma once

#include <string_view>

namespace ecu::shell {

// Whether the bytes are a JPEG picture from the start mark over the header of its frame and its scan to the end mark.
// What the scan holds is not looked at.
bool is_whole_jpeg(std::string_view bytes);

} // namespace ecu::shell
