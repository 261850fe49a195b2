// The commands that read and write parameters, all told by the table of parameters: those that share a read stand in
// one reply, and every write is answered with the value as stored. An element's echo has its index in front; an index
// outside the vector is echoed and stored nowhere.
#pragma once

#include "controller/live_blocks.h"
#include "controller/memory.h"

#include <cstdint>
#include <optional>
#include <span>

namespace ecu::controller {

// The reply's data, or nothing when the command is no parameter's. `arguments` are the request's three bytes.
std::optional<Data> answer_parameter(ControllerMemory& memory, std::uint8_t command,
                                     std::span<const std::uint8_t, 3> arguments);

} // namespace ecu::controller
