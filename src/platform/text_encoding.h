// Text of files that other programs wrote, as the UTF-8 that the forms show.
#pragma once

#include <string>
#include <string_view>

namespace ecu::platform {

// By its byte order mark UTF-16 or UTF-8, else as it is when it is UTF-8, else read as single-byte Latin-1. The mark is
// dropped; half a pair of UTF-16 becomes the replacement character.
std::string as_utf8(std::string_view text);

// For messages and terminals: what would act on them, control characters and the zero byte, stands as "\x1B".
std::string printable(std::string_view text);

} // namespace ecu::platform
