// The command line of the program ecu-controller.
#pragma once

#include "controller/virtual_controller.h"

#include <span>
#include <string>

namespace ecu::controller {

struct Options {
    Settings controller;
    std::string link_path;  // empty: no symbolic link
    std::string state_path; // empty: nothing outlives the program
    std::string shown;      // the help or the version, when it was asked for; nothing else is to be done then
    std::string error;      // what is wrong with the command line; empty when it is good
};

// `arguments` without the program's name.
Options parse_options(std::span<const char* const> arguments);

} // namespace ecu::controller
