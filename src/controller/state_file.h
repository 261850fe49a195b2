// The file in which the controller keeps memory and parameters over restarts, as text:
//   ECU-CONTROLLER STATE 1
//   ACC_SEN 10                 one line a parameter, all elements behind the key
//   @0100 66 67 ...            sixteen cells in hexadecimal; lines of zeros are left out
//   END 1A2B3C4D               Fletcher-32 sum over all bytes before this line
#pragma once

#include "controller/memory.h"

#include <string>

namespace ecu::controller {

// Fills `memory` and returns an empty text, or returns what is wrong and what to do, with `memory` untouched.
// A file that does not exist leaves the default calibration and is no error.
std::string load_state(const std::string& path, ControllerMemory& memory);
// Replaces the file in one step, so that a crash leaves the old one. Returns an empty text or what went wrong.
std::string save_state(const std::string& path, const ControllerMemory& memory);

} // namespace ecu::controller
